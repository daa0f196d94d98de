#include "merge/MergeBench.h"
#include "merge/check/MergePreview.h"
#include "merge/check/frmMergePreview.h"
#include "merge/tags/ProgramTag.h"

namespace mailvane::test {
namespace {

using testing::Test;

/// What the recipient and the send run see of a message. Plain ones keep HTML code of earlier ones,
/// which goes nowhere.
auto Parts(const MessageRecord& m) {
    return std::vector<std::string>{m.From,        m.To,      m.Subject,
                                    m.Body,        m.Attach,  m.BCC,
                                    m.ContentType, m.HTML,    m.HTML.empty() ? "" : m.HTMLCode,
                                    m.Status,      m.Priority};
}

struct PreviewTest : Test, MergeBench {
    PreviewTest() {
        MakeTable("People", {{.name = "Email"}, {.name = "Name"}},
                  {{"ann@example.com", "Ann"},
                   {std::nullopt, "Bob"},
                   {std::nullopt, "Cid"},
                   {"x", "Dan"},
                   {"eve@example.com", "Eve"}});
        for (const char* name : {"Ann", "Cid"})
            WriteFileText(folder.File(std::string(name) + ".html"), "<b>[Name]</b>");
        WriteFileText(folder.File("Eve.pdf"), std::string(1000, 'x'));
        auto& message = Message("Dear [Name] [Email]", "For [Name]");
        message.lstAttach.SetItems({folder.File("[Name].pdf")});
        message.lstHTML.SetItems({folder.File("[Name].html")});
        wb.forms.Get<frmSettings>().chkAddSignature.SetChecked(true);
        wb.forms.Get<frmSettings>().txtSignature.SetText("\r\n-- \r\nMe");
    }

    MergePlan Plan() { return MakeMergePlan(wb, {}); }
};

TEST_F(PreviewTest, ShowsInAnyOrderWhatTheRunStores) {
    MergePreview preview(wb, Plan());
    const auto stored = Merged();
    ASSERT_EQ(preview.Count(), stored.size());
    for (const std::size_t number : {4, 2, 0, 1, 3})
        EXPECT_EQ(Parts(*preview.Message(number)), Parts(stored[number])) << number;
}

TEST_F(PreviewTest, RunsAndWritesNothing) {
    WriteFileText(folder.File("tool"), "#!/bin/sh\n");
    ASSERT_TRUE(SaveTag(wb, ProgramTagRecord{.TagNumber = 1, .ProgramPath = folder.File("tool")}));
    Message("##Execute Program 1## ##Execute CGI 3##", "##Execute Program 2##");
    MergePreview preview(wb, Plan());
    EXPECT_EQ(preview.Message(0)->Body, "##Execute Program 1## ##Execute CGI 3##\r\n-- \r\nMe");
    EXPECT_FALSE(FileExists(wb.state.ProjectFolder + "/pTags/2.ptg"));
    EXPECT_TRUE(processes.started.empty());
    EXPECT_EQ(wb.state.MessageStore, nullptr);
}

TEST_F(PreviewTest, PagesAndFinds) {
    auto& form = wb.forms.Get<frmMergePreview>();
    const MergePlan plan = Plan();
    form.Preview(plan);
    EXPECT_EQ(form.lblPosition.Text(), "Message 1 of 5, HTML");
    EXPECT_EQ(form.tabMessage.Current(), 1);
    EXPECT_NE(form.htmMessage.Text().find("<b>Ann</b>"), std::string::npos);
    EXPECT_FALSE(form.cmdPrevious.Enabled());
    form.cmdNext.Press();
    EXPECT_EQ(form.lblPosition.Text(), "Message 2 of 5, plain text");
    EXPECT_EQ(form.txtTo.Text(), "ann@example.com") << "the address of the message before";
    EXPECT_EQ(form.htmMessage.Text(), "");
    form.cmdLast.Press();
    EXPECT_FALSE(form.cmdNext.Enabled());
    EXPECT_EQ(form.txtAttach.Text(), folder.File("Eve.pdf"));
    EXPECT_NE(form.txtSource.Text().find("[Eve.pdf: 1000 bytes, coded as base64]\r\n--"),
              std::string::npos);
    EXPECT_FALSE(form.lblProblem.Visible());

    form.txtFind.SetText("dear DAN");
    form.cmdFind.Press();
    EXPECT_EQ(form.txtSubject.Text(), "For Dan") << "from the start again";
    EXPECT_TRUE(form.lblProblem.Visible()) << "x is no address";
    form.txtFind.SetText("nobody");
    form.cmdFind.Press();
    EXPECT_EQ(form.lblFound.Text(), "'nobody' was not found.");
    EXPECT_EQ(form.txtSubject.Text(), "For Dan");
    const Subscription stop = windows.yielded.Observe([&] { form.cmdFind.Press(); });
    form.cmdFind.Press();
    EXPECT_EQ(form.lblFound.Text(), "The search was stopped.");
    EXPECT_TRUE(form.cmdFirst.Enabled());
    plan.recipients->Close();
    form.cmdFind.Press();
    EXPECT_EQ(form.lblFound.Text(), "Object invalid or no longer set.");
}

TEST_F(PreviewTest, OpensForTheRowsOfTheRun) {
    auto& dialog = Rows("4", "5");
    std::vector<std::string> seen;
    const Subscription shown = windows.idle.Observe([&] {
        auto* form = wb.forms.Find<frmMergePreview>();
        if (!form || !form->Visible()) return;
        seen.push_back(form->lblPosition.Text() + ": " + form->txtTo.Text());
        form->cmdClose.Press();
    });
    dialog.cmdPreview.Press();
    wb.forms.Get<frmViewMerge>().ActiveBar1.Press("Preview");
    EXPECT_EQ(seen, (std::vector<std::string>{"Message 1 of 2, plain text: x",
                                              "Message 1 of 5, HTML: ann@example.com"}));
}

}  // namespace
}  // namespace mailvane::test
