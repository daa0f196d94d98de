#include <gtest/gtest.h>

#include "platform/forms/Form.h"
#include "platform/forms/HeadlessWindows.h"
#include "support/ManualClock.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

/// Writes down what an observer is told and which handlers run, in order.
struct Log {
    std::vector<std::string> lines;
    std::function<void()> Writes(const std::string& line) {
        return [this, line] { lines.push_back(line); };
    }
    std::vector<std::string> Take() { return std::exchange(lines, {}); }
};
using Lines = std::vector<std::string>;

class Controls : public testing::Test {
protected:
    Subscription Watch(Control& control) {
        return control.changed.Observe([this, &control](Property property) {
            log.lines.push_back(Told(control, property, control.ShownText()));
        });
    }
    std::string Told(const Control& control, Property property, const std::string& text) {
        return control.Name() + " " + std::to_string(static_cast<int>(property)) + " " + text;
    }

    test::ManualClock clock;
    HeadlessWindows windows{clock};
    Form form{windows, "frmTest", "Test"};
    Log log;
};

TEST_F(Controls, ObserversAreToldBeforeTheHandlerRunsAndEqualValuesTellNobody) {
    TextBox text{form, "txtName"};
    CheckBox check{form, "chkWrap"};
    Slider slider{form, "Slider1", 1, 10, 5};
    text.onChange = log.Writes("onChange");
    check.onClick = log.Writes("onClick");
    slider.onChange = log.Writes("onSlide");
    const auto a = Watch(text), b = Watch(check), c = Watch(slider);

    text.SetText("Ann");
    check.SetChecked(true);
    slider.SetValue(99);
    EXPECT_EQ(log.Take(), (Lines{Told(text, Property::Text, "Ann"), "onChange",
                                 Told(check, Property::Value, "1"), "onClick",
                                 Told(slider, Property::Value, "10"), "onSlide"}));
    text.SetText("Ann");
    check.SetChecked(true);
    slider.SetValue(12);
    text.SetEnabled(true);
    text.SetVisible(true);
    text.SetTip("");
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(Controls, SettingAnOptionClearsItsGroupFirst) {
    OptionButton personal{form, "optPersonal", true};
    OptionButton bulk{form, "optBulk"};
    OptionButton file{form, "optFile", true, "signature"};
    personal.onClick = log.Writes("personal");
    bulk.onClick = [&] { log.lines.push_back("bulk, personal " + personal.ShownText()); };
    file.onClick = log.Writes("file");
    const auto a = personal.changed.Observe([&](Property) {
        EXPECT_TRUE(bulk.IsSet());  // never none of the group
    });

    bulk.SetValue(true);
    EXPECT_EQ(log.Take(), Lines{"bulk, personal 0"});
    EXPECT_TRUE(file.IsSet());
    bulk.SetValue(false);
    EXPECT_EQ(log.Take(), Lines{});
}

TEST_F(Controls, AHandlerMayReplaceItself) {
    Button button{form, "cmdNext"};
    std::string pressed;
    button.onClick = [&, keep = std::string(100, 'x')] {
        button.onClick = [&] { pressed += "second "; };
        pressed += keep.substr(0, 1) + " ";
    };
    button.Press();
    button.Press();
    EXPECT_EQ(pressed, "x second ");
    button.SetEnabled(false);
    EXPECT_EQ(button.Press(), ControlAnswer::Disabled);
    EXPECT_EQ(pressed, "x second ");
}

TEST_F(Controls, ReplacedSelectionLeavesTheCaretBehindIt) {
    TextBox text{form, "txtBody", "Dear name, hello"};
    text.onChange = [&] { log.lines.push_back(text.Text()); };
    text.Select(5, 4);
    text.ReplaceSelection("[Name]");
    EXPECT_EQ(log.Take(), Lines{"Dear [Name], hello"});
    EXPECT_EQ(text.SelectionStart(), 11u);
    EXPECT_EQ(text.SelectionLength(), 0u);

    text.SetText("ab");
    EXPECT_EQ(text.SelectionStart(), 2u);
    text.SetText("Zoë");
    text.Select(3, 99);  // inside of the last character
    EXPECT_EQ(text.SelectionStart(), 2u);
    text.ReplaceSelection("e");
    EXPECT_EQ(text.Text(), "Zoe");
}

TEST_F(Controls, ChosenEntryFollowsItsTextThroughChangesOfTheList) {
    ListBox list{form, "List1", ListBox::Selection::Multiple};
    list.SetItems({"a", "b", "c", "d"});
    list.SetListIndex(2);
    list.SetSelected(3, true);
    list.SetSelected(1, true);
    list.InsertItem(0, "first");
    EXPECT_EQ(list.Text(), "c");
    EXPECT_EQ(list.SelectedItems(), (std::vector<int>{2, 4}));
    list.RemoveItem(2);
    EXPECT_EQ(list.Text(), "c");
    EXPECT_EQ(list.SelectedItems(), std::vector<int>{3});
    list.RemoveItem(2);
    EXPECT_EQ(list.ListIndex(), -1);
    list.Clear();
    EXPECT_EQ(list.SelectedItems(), std::vector<int>{});
}

TEST_F(Controls, ComboBoxTakesEntriesAndTypedText) {
    ComboBox fixed{form, "cmbTable"};
    ComboBox free{form, "cmbTo", ComboBox::Style::Editable};
    for (ComboBox* box : {&fixed, &free}) {
        box->SetItems({"Customers", "Orders"});
        box->onClick = log.Writes(box->Name() + " click");
        box->onChange = log.Writes(box->Name() + " change");
    }
    EXPECT_TRUE(fixed.SetText("orders"));
    EXPECT_EQ(fixed.ListIndex(), 1);
    EXPECT_FALSE(fixed.SetText("Nothing"));
    EXPECT_EQ(fixed.Text(), "Orders");
    EXPECT_TRUE(free.SetText("Orders"));
    EXPECT_EQ(log.Take(), (Lines{"cmbTable click", "cmbTo click"}));

    EXPECT_TRUE(free.SetText("orders"));
    EXPECT_EQ(free.Text(), "orders");
    EXPECT_EQ(free.ListIndex(), -1);
    free.SetListIndex(0);
    EXPECT_EQ(free.Text(), "Customers");
    EXPECT_EQ(log.Take(), (Lines{"cmbTo change", "cmbTo click"}));
}

TEST_F(Controls, ListKeepsItsOwnFile) {
    test::TempFolder folder;
    const std::string path = folder.Write("Rules.dat", "1. Bounces\r\n2. Orders\n\n3. Ümlaut");
    ListBoks list{form, "lbxRules"};
    list.SetFile(path);
    list.Load();
    EXPECT_EQ(list.Items(), (std::vector<std::string>{"1. Bounces", "2. Orders", "3. Ümlaut"}));

    list.SetListIndex(2);
    list.MoveDown();  // the last one stays
    list.MoveUp();
    EXPECT_EQ(list.Text(), "3. Ümlaut");
    EXPECT_EQ(folder.Read("Rules.dat"), "1. Bounces\r\n3. Ümlaut\r\n2. Orders\r\n");

    bool mayDelete = false;
    list.onBeforeDelete = [&] { return mayDelete; };
    list.PressDelete();
    EXPECT_EQ(list.Count(), 3);
    mayDelete = true;
    list.PressDelete();
    EXPECT_EQ(folder.Read("Rules.dat"), "1. Bounces\r\n2. Orders\r\n");
    list.PressDelete();  // none is chosen any more
    EXPECT_EQ(list.Count(), 2);

    list.AddItem("4. two\r\nlines");
    EXPECT_TRUE(list.Save());
    list.Load();
    EXPECT_EQ(list.Count(), 3);
    list.SetFile(folder.File("missing/Rules.dat"));
    EXPECT_FALSE(list.Save());
    list.Load();
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(Controls, GridForgetsRowsThatHaveGone) {
    Grid grid{form, "Grid1"};
    auto table = std::make_shared<GridTable>();
    table->rows = {{"Ann", "a@x"}, {"Bob", "b@x"}, {"Cid", "c@x"}};
    grid.onRowChange = log.Writes("row");
    grid.onSelectionChange = log.Writes("selection");
    grid.SetRows(table);
    grid.SetCurrentRow(2);
    grid.SetSelected({2, 0, 2});
    EXPECT_EQ(log.Take(), (Lines{"row", "selection"}));
    EXPECT_EQ(grid.ShownText(), "Cid\tc@x");
    EXPECT_EQ(grid.SelBookmarks().All(), (std::vector<std::int64_t>{2, 0}));

    table->rows.pop_back();
    grid.RowsChanged();
    EXPECT_EQ(grid.CurrentRow(), std::nullopt);
    EXPECT_EQ(grid.ShownText(), "");
    grid.SetCurrentRow(7);
    EXPECT_EQ(log.Take(), Lines{});
    grid.SetRows(nullptr);
    EXPECT_EQ(grid.SelBookmarks().Count(), 0u);
    EXPECT_EQ(grid.EntryCount(), 0);
}

TEST_F(Controls, ToolsAnswerToTheirState) {
    ActiveBar bar{form, "ActiveBar1"};
    bar.AddTool({.name = "RecentFile1", .caption = "Old", .onClick = [&] {
                     bar.AddTool({.name = "More"});  // the list of tools moves
                     log.lines.push_back(bar.FindTool("RecentFile1")->caption);
                 }});
    int told = 0;
    const auto watch = bar.changed.Observe([&](Property) { ++told; });
    bar.SetToolCaption("recentfile1", "/a.poc");
    bar.SetToolCaption("RecentFile1", "/a.poc");
    EXPECT_EQ(told, 1);
    EXPECT_EQ(bar.Press("recentFILE1"), ControlAnswer::Done);
    bar.SetToolVisible("RecentFile1", false);
    EXPECT_EQ(bar.Press("RecentFile1"), ControlAnswer::Disabled);
    EXPECT_EQ(bar.Press("RecentFile2"), ControlAnswer::NoSuchEntry);
    EXPECT_EQ(log.Take(), Lines{"/a.poc"});
    EXPECT_EQ(bar.Press("More"), ControlAnswer::Disabled) << "it has nothing to do";
    Button button{form, "cmdMore"};
    bar.AddTool({.name = "More", .tip = "Do more", .button = &button});
    EXPECT_EQ(bar.FindTool("More")->ShownTip(), "Do more. Comes with a later version.");
    told = 0;
    button.onClick = [&] { log.lines.push_back("more"); };
    EXPECT_GT(told, 0) << "who shows the tool is told";
    EXPECT_EQ(bar.Press("More"), ControlAnswer::Done);
    EXPECT_EQ(log.Take(), Lines{"more"});
}

TEST_F(Controls, AnEventMayBeDestroyedWhileItIsTold) {
    auto event = std::make_unique<Event<>>();
    int later = 0;
    Subscription second;
    const auto first = event->Observe([&] {
        second.End();
        event.reset();
    });
    second = event->Observe([&] { ++later; });
    const auto third = event->Observe([&] { ++later; });
    event->Tell();
    EXPECT_EQ(later, 1);  // the third only
}

}  // namespace
}  // namespace mailvane
