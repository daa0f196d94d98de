#include <random>

#include "core/Paths.h"
#include "core/records/Sifrant.h"
#include "merge/MergeBench.h"
#include "merge/message/MergeDocument.h"

namespace mailvane::test {
namespace {

struct MergeDocumentTest : testing::Test, MergeBench {
    MergeDocumentTest() { MakeRecipients(2); }
    std::string Plain(frmViewMerge& view) { return ReadMergeControlValues(wb, view); }
};

TEST_F(MergeDocumentTest, HoldsTheSevenValuesInOrder) {
    frmViewMerge& view = Message("Line 1\r\nLine 2");
    view.lstAttach.SetItems({"/a/b.txt"});
    EXPECT_EQ(Plain(view),
              "txtFrom*|*me@here#|#txtSubject*|*Subject#|#txtBody*|*Line 1\r\nLine 2#|#"
              "txtTo*|*0#|#lstAttach*|*/a/b.txt#|#lstHTML*|*#|#lblTable*|*People#|#\r\n");
}

TEST_F(MergeDocumentTest, AppliesWhatTheTextHolds) {
    struct Row {
        const char* name;
        std::string text;
        const char* body;
        const char* attach = "";
        int toIndex = 0;
        const char* table = "People";
    };
    const Row rows[] = {
        {"a whole document", "txtBody*|*B#|#txtTo*|*1#|#lstAttach*|*[Name]#|#lblTable*|*T#|#\r\n",
         "B", "[Name]", 1, "T"},
        {"a body with the entry mark is cut there", "txtBody*|*one#|#two#|#", "one"},
        {"a body with the name mark is cut there", "txtBody*|*one*|*two#|#", "one"},
        {"the first of two entries counts", "txtBody*|*1#|#txtBody*|*2#|#", "1"},
        {"keys are case-sensitive", "TXTBODY*|*1#|#", ""},
        {"an index that is no column", "txtTo*|*7#|#", ""},
        {"an index that is no number", "txtTo*|*1x#|#", ""},
        {"nothing at all", "", ""},
    };
    frmViewMerge& view = Message();
    for (const Row& row : rows) {
        view.txtBody.SetText("old");
        view.lstAttach.SetItems({"old"});
        view.txtTo.SetListIndex(0);
        view.lblTable.SetText("People");
        ApplyMergeControlValues(view, row.text);
        EXPECT_EQ(view.txtBody.Text(), row.body) << row.name;
        EXPECT_EQ(view.lstAttach.FirstItem(), row.attach) << row.name;
        EXPECT_EQ(view.txtTo.ListIndex(), row.toIndex) << row.name;
        EXPECT_EQ(view.lblTable.Text(), row.table) << row.name;
    }
}

TEST_F(MergeDocumentTest, ComesBackFromItsFile) {
    frmViewMerge& view = Message("Grüße, [Name]\r\n");
    view.lstHTML.SetItems({"[Name].html"});
    view.txtTo.SetListIndex(1);
    const std::string path = folder.File("m.dmg");
    view.SaveMergeDocument(path);
    EXPECT_EQ(view.Caption(), "E-mail Merge - m.dmg");
    EXPECT_EQ(ReadFileText(path).find("txtBody"), std::string::npos);
    const std::string saved = Plain(view);

    view.txtBody.SetText("");
    view.lstHTML.Clear();
    view.txtTo.SetListIndex(0);
    view.OpenMergeDocument(path);
    EXPECT_EQ(Plain(view), saved);
    EXPECT_EQ(view.CurrentFile(), path);
    view.Unload();
    Settle();
    EXPECT_EQ(Plain(wb.forms.Get<frmViewMerge>()), saved) << "the last one opens with the form";
}

TEST_F(MergeDocumentTest, TheShippedTemplateIsADocument) {
    const std::string text =
        UnscrambleMergeDocument(ReadFileText(platform.shareFolder + "/msge.mg"));
    EXPECT_TRUE(text.starts_with("txtFrom*|*") && text.ends_with("#|#\r\n")) << text;
}

TEST_F(MergeDocumentTest, BadFilesEmptyTheTextsAndHarmNothing) {
    const std::string body = "Body that is long enough to be cut in the middle of it";
    frmViewMerge& view = Message(body);
    view.SaveMergeDocument(folder.File("whole.dmg"));
    const std::string content = folder.Read("whole.dmg");
    const std::string plain = UnscrambleMergeDocument(content);
    std::vector<std::string> contents{"", Sifrant().Sifriraj(plain, "other key")};
    std::mt19937 random(7);
    for (int i = 0; i < 50; ++i) {
        std::string bytes(random() % 400, '\0');
        for (char& byte : bytes)
            byte = static_cast<char>(random());
        contents.push_back(bytes);
    }
    for (const std::string& bad : contents) {
        view.OpenMergeDocument(folder.Write("bad.dmg", bad));
        EXPECT_EQ(view.txtBody.Text(), "");
        EXPECT_EQ(view.lblTable.Text(), "People");
    }
    for (std::size_t length = 0; length < content.size(); length += 7) {
        view.OpenMergeDocument(folder.Write("cut.dmg", content.substr(0, length)));
        // The last letter may have lost its upper bits.
        const std::string shown = view.txtBody.Text();
        EXPECT_TRUE(shown.empty() || body.starts_with(shown.substr(0, shown.size() - 1))) << length;
    }
}

}  // namespace
}  // namespace mailvane::test
