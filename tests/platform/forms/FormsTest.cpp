#include <gtest/gtest.h>

#include "platform/forms/FormRegistry.h"
#include "platform/forms/HeadlessWindows.h"
#include "support/ManualClock.h"

namespace mailvane {
namespace {

using std::chrono::milliseconds;
using Lines = std::vector<std::string>;

using Journal = Lines;  // what happened to the forms, by name

class LoggedForm : public Form {
public:
    LoggedForm(WindowSystem& windows, Journal& journal, std::string name)
        : Form(windows, std::move(name), "Logged"), journal_(journal) {}
    ~LoggedForm() override { Note("destroyed"); }

    Button cmdClose{*this, "cmdClose", [this] {
                        Unload();
                        Note("still here");
                    }};
    Timer Timer1{*this, "Timer1", milliseconds(50), [this] { Note("timer"); }};
    bool mayUnload = true;
    std::function<void()> whenUnloading;

protected:
    void OnLoad() override { Note("load"); }
    void OnActivate() override { Note("activate"); }
    bool OnQueryUnload() override { return mayUnload; }
    void OnUnload() override {
        Note(Visible() ? "unload, visible" : "unload");
        RunHandler(whenUnloading);
    }

private:
    void Note(const std::string& what) { journal_.push_back(Name() + " " + what); }
    Journal& journal_;
};
struct frmOne final : LoggedForm {
    frmOne(WindowSystem& w, Journal& j) : LoggedForm(w, j, "frmOne") {}
};
struct frmTwo final : LoggedForm {
    frmTwo(WindowSystem& w, Journal& j) : LoggedForm(w, j, "frmTwo") {}
};

class FormsTest : public testing::Test {
protected:
    template <class F>
    F& Load() {
        return static_cast<F&>(
            forms.LoadAs(typeid(F), [this] { return std::make_unique<F>(windows, journal); }));
    }
    Journal Take() { return std::exchange(journal, {}); }

    Journal journal;
    test::ManualClock clock;
    HeadlessWindows windows{clock};
    FormRegistry forms{windows};
};

TEST_F(FormsTest, LifeOfAForm) {
    const auto made =
        forms.created.Observe([&](Form& f) { journal.push_back("made " + f.Name()); });
    const auto gone =
        forms.unloading.Observe([&](Form& f) { journal.push_back("going " + f.Name()); });
    frmOne& form = Load<frmOne>();
    EXPECT_EQ(&Load<frmOne>(), &form);
    form.cmdClose.Focus();
    EXPECT_EQ(windows.FocusedControl(), nullptr);  // not on the screen
    form.Show();
    form.Show();
    form.cmdClose.Focus();
    EXPECT_EQ(windows.FocusedControl(), &form.cmdClose);
    EXPECT_EQ(Take(), (Lines{"made frmOne", "frmOne load", "frmOne activate", "frmOne activate"}));
    EXPECT_TRUE(forms.IsFormLoaded("FRMONE"));

    form.mayUnload = false;
    form.OnCloseBox();
    EXPECT_TRUE(form.Visible());
    form.mayUnload = true;
    form.OnCloseBox();
    EXPECT_FALSE(forms.IsFormLoaded("frmOne"));
    EXPECT_FALSE(form.IsLoaded());
    EXPECT_EQ(windows.FocusedControl(), nullptr);
    form.Show();
    EXPECT_FALSE(form.Visible());
    EXPECT_EQ(Take(), (Lines{"frmOne unload", "going frmOne"}));
    windows.HandleIdle();
    EXPECT_EQ(Take(), Lines{"frmOne destroyed"});
}

TEST_F(FormsTest, UnloadedFromItsOwnHandlerItLivesUntilIdle) {
    frmOne& form = Load<frmOne>();
    form.Timer1.Start();
    Take();
    form.cmdClose.Press();
    EXPECT_NE(&Load<frmOne>(), &form);  // a new one of the same type beside it
    windows.WaitSeconds(1);             // its timer is silent
    EXPECT_EQ(Take(), (Lines{"frmOne unload", "frmOne still here", "frmOne load"}));
    windows.HandleIdle();
    EXPECT_EQ(Take(), Lines{"frmOne destroyed"});
}

TEST_F(FormsTest, UnloadingMayUnloadOthersAndItself) {
    frmOne& one = Load<frmOne>();
    frmTwo& two = Load<frmTwo>();
    Take();
    two.mayUnload = false;
    one.whenUnloading = [&] {
        EXPECT_TRUE(one.Unload());
        forms.UnloadAllExcept({});
    };
    forms.UnloadAllExcept({"FRMTWO"});
    EXPECT_EQ(Take(), (Lines{"frmOne unload", "frmTwo unload"}));
    EXPECT_TRUE(forms.All().empty());
}

TEST_F(FormsTest, ModalFormHoldsItsCallerAndKeepsUnloadedFormsAlive) {
    frmOne& one = Load<frmOne>();
    frmTwo& two = Load<frmTwo>();
    Take();
    windows.Post([&] {
        one.ShowModal();
        journal.push_back("depth " + std::to_string(windows.ModalDepth()));
        windows.Quit();
    });
    std::vector<std::function<void()>> steps{
        [&] { two.ShowModal(); },  // a second dialog above the first
        [&] {
            one.cmdClose.Press();  // the lower one goes first
            EXPECT_EQ(windows.ModalDepth(), 2);
        },
        [&] { two.Hide(); }};
    std::size_t next = 0;
    const auto idle = windows.idle.Observe([&] {
        if (next < steps.size() && windows.ModalDepth() > 0) steps[next++]();
    });
    windows.Run();
    EXPECT_EQ(Take(), (Lines{"frmOne activate", "frmTwo activate", "frmOne unload",
                             "frmOne still here", "depth 0", "frmOne destroyed"}));
}

TEST_F(FormsTest, TimersFireByTheClockWhileEventsArePumped) {
    frmOne& form = Load<frmOne>();
    Take();
    int count = 0;
    form.Timer1.onTimer = [&] {
        if (++count == 3) form.Timer1.Stop();
    };
    form.Timer1.Start();
    clock.Advance(milliseconds(500));
    EXPECT_EQ(count, 0);
    windows.PumpEvents();
    EXPECT_EQ(count, 1);  // what was missed is not made up for
    windows.WaitSeconds(1);
    EXPECT_EQ(count, 3);

    // Runs pump only every ten milliseconds.
    int fired = 0, yields = 0;
    form.Timer1.onTimer = [&] { ++fired; };
    form.Timer1.Start();
    const auto watch = windows.yielded.Observe([&] { ++yields; });
    for (const int pause : {60, 59, 9}) {
        clock.Advance(milliseconds(pause));
        windows.YieldBriefly();
    }
    EXPECT_EQ(fired, 2);
    EXPECT_EQ(yields, 3);
}

TEST_F(FormsTest, PostedWorkWaitsForAnIdleMoment) {
    windows.Post([&] {
        journal.push_back("first");
        windows.Post([&] {
            journal.push_back("second");
            windows.Quit();
        });
        windows.PumpEvents();
        windows.WaitSeconds(1);
        journal.push_back("end of first");
    });
    windows.WaitSeconds(1);
    EXPECT_EQ(Take(), Lines{});
    windows.Run();
    EXPECT_EQ(Take(), (Lines{"first", "end of first", "second"}));
}

TEST_F(FormsTest, QuitEndsModalLoopsAndWaits) {
    frmOne& form = Load<frmOne>();
    windows.Post([&] { form.ShowModal(); });
    const auto idle = windows.idle.Observe([&] {
        if (windows.ModalDepth() == 1) windows.Quit();
    });
    windows.Run();
    const auto before = clock.Monotonic();
    windows.WaitSeconds(3600);
    EXPECT_EQ(clock.Monotonic(), before);
}

}  // namespace
}  // namespace mailvane
