#include <gtest/gtest.h>

#include "core/run/LongRun.h"
#include "core/run/frmStatus.h"
#include "support/TestBench.h"

namespace mailvane {
namespace {

struct LongRuns : testing::Test, test::TestBench {
    LongRuns() { Prompts().UseDefaults(); }
    const std::vector<ShownPrompt>& Boxes() { return Prompts().Shown(); }
};

TEST_F(LongRuns, NoTwoHoldTheSame) {
    LongRun sending(wb, {"Sending messages", Holds::Store | Holds::Settings});
    EXPECT_FALSE(LongRun(wb, {"Compaction", Holds::Store}).Began());
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_NE(Boxes()[0].text.find("\"Sending messages\" is under way"), std::string::npos);
    EXPECT_TRUE(LongRun(wb, {"Sorting", Holds::Recipients}).Began());
    EXPECT_EQ(wb.runs.Current(), &sending) << "the one that was refused ends nothing";
}

TEST_F(LongRuns, CancelIsTheInnermostRunsAndEndsWithIt) {
    wb.state.CancelRequested = true;  // pressed when nothing was under way any more
    LongRun outer(wb, {"Sending messages", Holds::Store});
    EXPECT_TRUE(outer.GoesOn());
    {
        LongRun inner(wb, {"Sorting", Holds::Recipients});
        wb.forms.Get<frmStatus>().cmdCancel.Press();
        EXPECT_FALSE(inner.GoesOn());
        EXPECT_TRUE(outer.GoesOn());
    }
    EXPECT_TRUE(outer.GoesOn());
}

TEST_F(LongRuns, EndInOrderForWhoNeedsTheGround) {
    std::string order;
    wb.runs.EndThen(Holds::Everything, [&] { order += "free "; });
    {
        LongRun run(wb, {"Merging", Holds::Everything});
        run.howFar = [] { return "3 of 12 messages are in the Outbox"; };
        run.onEndAsked = [&] { order += "asked "; };
        wb.runs.EndThen(Holds::Store, [&] { order += "switched "; });
        wb.runs.EndThen(
            Holds::Message, [&] { order += "closed "; }, HowFar::Kept);
        EXPECT_FALSE(run.GoesOn());
        windows.HandleIdle();
        EXPECT_EQ(order, "free asked ") << "not while the run is under way";
    }
    EXPECT_EQ(order, "free asked ") << "not in the middle of its caller";
    windows.HandleIdle();
    EXPECT_EQ(order, "free asked switched closed ");
    const std::string text = "Merging was ended early: 3 of 12 messages are in the Outbox.";
    ASSERT_EQ(Boxes().size(), 1U);
    EXPECT_EQ(Boxes()[0].text, text);
    EXPECT_EQ(shell.panel, text);
}

TEST_F(LongRuns, ControlsAreOffMeanwhile) {
    Button& on = wb.forms.Get<frmStatus>().cmdCancel;
    Button& off = mainForm.cmdSave;
    off.SetEnabled(false);
    {
        const LongRun run(wb, {"Merging", Holds::Message, {&on, &off}});
        EXPECT_FALSE(on.Enabled());
    }
    EXPECT_TRUE(on.Enabled());
    EXPECT_FALSE(off.Enabled()) << "it was off before";
}

TEST_F(LongRuns, WindowComesAfterHalfASecondAndAlwaysGoes) {
    auto& status = wb.forms.Get<frmStatus>();
    {
        LongRun run(wb, {"Merging"});
        run.ShowProgress(10, "Generating messages...");
        run.Step(3);
        EXPECT_FALSE(status.Visible());
        clock.Advance(std::chrono::milliseconds(500));
        run.Step(10, "the last one");
        EXPECT_TRUE(status.Visible()) << "the run's end closes it, not its last step";
        EXPECT_EQ(status.lblCaption1.Text(), "the last one");
    }
    EXPECT_FALSE(status.Visible());
}

}  // namespace
}  // namespace mailvane
