#include <cstdlib>

#include "merge/MergeBench.h"
#include "merge/message/frmSpelling.h"
#include "platform/os/Files.h"

namespace mailvane::test {
namespace {

struct SpellingTest : testing::Test, MergeBench {
    SpellingTest() { MakeRecipients(1); }
    /// Presses these buttons, one at each idle moment, while the dialog stands open, and remembers
    /// the words it asked about and where they stood in the body.
    void Answer(RichTextBox& body, std::vector<std::function<void(frmSpelling&)>> steps) {
        asked.clear();
        std::size_t step = 0;
        const auto answering = windows.idle.Observe([&] {
            auto* dialog = wb.forms.Find<frmSpelling>();
            if (!dialog || !dialog->Visible()) return;
            asked += dialog->lblWord.Text() + " ";
            EXPECT_EQ(body.Text().substr(body.SelectionStart(), body.SelectionLength()),
                      dialog->lblWord.Text());
            if (step < steps.size())
                steps[step++](*dialog);
            else
                dialog->cmdCancel.Press();
        });
        CheckSpelling(wb, body);
    }

    std::string asked;  ///< a blank behind each word
};

using Step = std::function<void(frmSpelling&)>;

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
    RichTextBox& body = Message().txtBody;
    const std::string complete = "The spelling check is complete.";
    const Step ignore = Press(&frmSpelling::cmdIgnore);
    const Step ignoreAll = Press(&frmSpelling::cmdIgnoreAll);
    const Step changeAll = ChangeTo("the", &frmSpelling::cmdChangeAll);
    const Step add = Press(&frmSpelling::cmdAdd);
    const std::vector<Step> changes{ChangeTo("This very"), ChangeTo(""), ChangeTo("the")};
    const std::tuple<const char*, std::vector<Step>, const char*, const char*, bool> rows[] = {
        {"Dear [Frst], hello", {}, "", "Dear [Frst], hello", true},
        {"teh teh", {ignore, ignore}, "teh teh ", "teh teh", true},
        {"teh adress teh", {ignoreAll, ignore}, "teh adress ", "teh adress teh", true},
        {"Teh adress, teh end", changes, "Teh adress teh ", "This very , the end", false},
        {"teh adress\r\nteh", {changeAll, ignore}, "teh adress ", "the adress\r\nthe", false},
        {"teh adress", {}, "teh ", "teh adress", false},
        {"teh adress", {ChangeTo("the")}, "teh adress ", "the adress", false},
        {"Mailvane teh Mailvane", {add, ignore}, "Mailvane teh ", "Mailvane teh Mailvane", true},
        {"Mailvane", {}, "", "Mailvane", true},
    };
    for (const auto& [text, steps, words, after, ends] : rows) {
        body.SetText(text);
        if (ends) Prompts().QueueBox(BoxAnswer::Ok, complete);
        Answer(body, steps);
        EXPECT_EQ(asked, words) << text;
        EXPECT_EQ(body.Text(), after) << text;
        EXPECT_EQ(Prompts().ExpectBox(complete), ends) << text;
        EXPECT_FALSE(wb.forms.Find<frmSpelling>()) << text;
        Settle();
    }
    EXPECT_EQ(Prompts().Shown().back().title, "Spelling");
}

TEST_F(SpellingTest, OffersSuggestions) {
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
    EXPECT_EQ(asked, "");
    EXPECT_FALSE(wb.forms.Find<frmSpelling>());
}

}  // namespace
}  // namespace mailvane::test
