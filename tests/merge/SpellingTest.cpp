#include <cstdlib>

#include "merge/BodyCommands.h"
#include "merge/MergeBench.h"
#include "merge/frmSpelling.h"
#include "platform/os/Files.h"

namespace mailvane::test {
namespace {

struct SpellingTest : testing::Test, MergeBench {
    /// Presses these buttons, one at each idle moment, while the dialog stands open, and remembers
    /// the words it asked about and where they stood in the body.
    void Answer(RichTextBox& body, std::vector<std::function<void(frmSpelling&)>> steps) {
        asked.clear();
        std::size_t step = 0;
        const auto answering = windows.idle.Observe([&] {
            auto* dialog = wb.forms.Find<frmSpelling>();
            if (!dialog || !dialog->Visible()) return;
            asked.push_back(dialog->lblWord.Text());
            EXPECT_EQ(body.Text().substr(body.SelectionStart(), body.SelectionLength()),
                      dialog->lblWord.Text());
            if (step < steps.size())
                steps[step++](*dialog);
            else
                dialog->cmdCancel.Press();
        });
        RunBodyCommand(wb, body, "Spelling");
    }

    std::vector<std::string> asked;
};

using Step = std::function<void(frmSpelling&)>;
using Words = std::vector<std::string>;

Step Press(Button frmSpelling::*button) {
    return [button](frmSpelling& dialog) { (dialog.*button).Press(); };
}

Step ChangeTo(const std::string& text, Button frmSpelling::*button = &frmSpelling::cmdChange) {
    return [=](frmSpelling& dialog) {
        dialog.txtChange.SetText(text);
        (dialog.*button).Press();
    };
}

TEST_F(SpellingTest, GoesThroughTheBody) {
    MakeRecipients(1);
    RichTextBox& body = Message().txtBody;
    const std::string complete = "The spelling check is complete.";
    struct Row {
        const char* name;
        const char* text;
        std::vector<Step> steps;
        Words asked;
        const char* after;
        bool complete;
    };
    const auto ignore = Press(&frmSpelling::cmdIgnore);
    const Row rows[] = {
        {"no mistakes", "Dear [Frst], hello", {}, {}, "Dear [Frst], hello", true},
        {"ignored", "teh teh", {ignore, ignore}, {"teh", "teh"}, "teh teh", true},
        {"all ignored",
         "teh adress teh",
         {Press(&frmSpelling::cmdIgnoreAll), ignore},
         {"teh", "adress"},
         "teh adress teh",
         true},
        {"changed, one by one",
         "Teh adress, teh end",
         {ChangeTo("This very"), ChangeTo(""), ChangeTo("the")},
         {"Teh", "adress", "teh"},
         "This very , the end",
         false},
        {"all changed",
         "teh adress teh\r\nadress",
         {ChangeTo("the", &frmSpelling::cmdChangeAll), ignore, ignore},
         {"teh", "adress", "adress"},
         "the adress the\r\nadress",
         false},
        {"given up", "teh adress", {}, {"teh"}, "teh adress", false},
        {"given up later", "teh adress", {ChangeTo("the")}, {"teh", "adress"}, "the adress", false},
        {"added",
         "Mailvane teh Mailvane",
         {Press(&frmSpelling::cmdAdd), ignore},
         {"Mailvane", "teh"},
         "Mailvane teh Mailvane",
         true},
        {"known from then on", "Mailvane", {}, {}, "Mailvane", true},
    };
    for (const Row& row : rows) {
        body.SetText(row.text);
        if (row.complete) Prompts().QueueBox(BoxAnswer::Ok, complete);
        Answer(body, row.steps);
        EXPECT_EQ(asked, row.asked) << row.name;
        EXPECT_EQ(body.Text(), row.after) << row.name;
        EXPECT_EQ(Prompts().ExpectBox(complete), row.complete) << row.name;
        EXPECT_FALSE(wb.forms.Find<frmSpelling>()) << row.name;
        Settle();
    }
    EXPECT_EQ(Prompts().Shown().back().title, "Spelling");
    EXPECT_FALSE(Prompts().Failure());
}

TEST_F(SpellingTest, OffersSuggestions) {
    MakeRecipients(1);
    RichTextBox& body = Message("an adress here").txtBody;
    Answer(body, {[](frmSpelling& dialog) {
               EXPECT_EQ(dialog.txtChange.Text(), dialog.lstSuggestions.FirstItem());
               EXPECT_EQ(dialog.lstSuggestions.SetByUser("address"), ControlAnswer::Done);
               EXPECT_EQ(dialog.txtChange.Text(), "address");
               dialog.lstSuggestions.onDoubleClick();
           }});
    EXPECT_EQ(body.Text(), "an address here");
}

TEST_F(SpellingTest, TellsOfWhatIsMissing) {
    MakeRecipients(1);
    RichTextBox& body = Message("adress").txtBody;
    MakeFolders(InProgramFolder("words.txt"));  // no file can be written there
    Prompts().QueueBox(BoxAnswer::Ok, "Your dictionary '" + InProgramFolder("words.txt") +
                                          "' could not be written.");
    Prompts().QueueBox(BoxAnswer::Ok, "The spelling check is complete.");
    Answer(body, {Press(&frmSpelling::cmdAdd)});

    ::setenv("DICPATH", folder.Path().c_str(), 1);
    Prompts().QueueBox(BoxAnswer::Ok, "The spelling cannot be checked");
    Answer(body, {});
    ::unsetenv("DICPATH");
    EXPECT_EQ(asked, Words{});
    EXPECT_FALSE(wb.forms.Find<frmSpelling>());
    EXPECT_FALSE(Prompts().Failure());
}

}  // namespace
}  // namespace mailvane::test
