#pragma once

#include <memory>
#include <string>

#include "platform/forms/FormRegistry.h"

namespace mailvane::test {

class frmDialog final : public Form {
public:
    explicit frmDialog(WindowSystem& windows) : Form(windows, "frmDialog", "Dialog") {}
    TextBox txtName{*this, "txtName"};
    Button cmdOK{*this, "cmdOK", [this] { Hide(); }};
};

/// One control of each kind, and buttons that do what scripts must cope with.
class frmWork final : public Form {
public:
    frmWork(WindowSystem& windows, FormRegistry& forms) : Form(windows, "frmWork", "Work") {
        cmbTable.SetItems({"Customers", "Orders"});
        cmbTo.SetItems({"ann@x"});
        List1.SetItems({"a", "b", "c"});
        rows->rows = {{"Ann", "a@x"}, {"Bob", "b@x"}, {"Cid", "c@x"}};
        Grid1.SetRows(rows);
        cmdOff.SetEnabled(false);
        ActiveBar1.AddTool({.name = "Print", .onClick = [this] { Log("Print"); }});
        ActiveBar1.AddTool({.name = "Sort", .caption = "&Sort", .enabled = false});
        txtWrap.onLeave = [this] {
            if (txtWrap.Text() == "5") txtWrap.SetText("65");
        };
        lbxRules.onAdd = [this] { lbxRules.AddItem("rule"); };
        lbxRules.onEdit = [this] { Log("edit " + lbxRules.Text()); };
        cmdModal.onClick = [this, &forms] {
            auto& dialog = static_cast<frmDialog&>(forms.LoadAs(
                typeid(frmDialog), [this] { return std::make_unique<frmDialog>(Windows()); }));
            if (dialog.Visible()) return;
            dialog.ShowModal();
            Log("dialog over");
        };
    }

    TextBox txtWrap{*this, "txtWrap"};
    TextBox txtLog{*this, "txtLog"};
    RichTextBox rtfText{*this, "rtfText"};
    Label lblNote{*this, "lblNote", "Note"};
    CheckBox chkWrap{*this, "chkWrap", false, [this] { Log("wrap" + chkWrap.ShownText()); }};
    OptionButton optText{*this, "optText", true};
    OptionButton optFile{*this, "optFile"};
    ComboBox cmbTable{*this, "cmbTable"};
    ComboBox cmbTo{*this, "cmbTo", ComboBox::Style::Editable};
    ListBox List1{*this, "List1", ListBox::Selection::Multiple};
    ListBoks lbxRules{*this, "lbxRules"};
    Slider Slider1{*this, "Slider1", 1, 10, 5};
    DatePicker dtpFrom{*this, "dtpFrom"};
    Tabs Tabs1{*this, "Tabs1"};
    ProgressBar Progress1{*this, "Progress1"};
    StatusBar StatusBar1{*this, "StatusBar1", 2};
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(500), [this] { Log("timer"); }};
    Grid Grid1{*this, "Grid1"};
    std::shared_ptr<GridTable> rows = std::make_shared<GridTable>();
    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    Button cmdOff{*this, "cmdOff"};
    Button cmdClose{*this, "cmdClose", [this] { Unload(); }};
    Button cmdAsk{*this, "cmdAsk", [this] {
                      const auto answer = Windows().MessageBox(
                          {"Go\r\non?", "Ask", BoxIcon::Question, BoxButtons::YesNo});
                      Log(answer == BoxAnswer::Yes ? "yes" : "no");
                  }};
    Button cmdInput{*this, "cmdInput", [this] {
                        Log(Windows().InputBox({"Name?", "Ask", ""}).value_or("none"));
                    }};
    Button cmdFile{*this, "cmdFile", [this] {
                       FileRequest request;
                       request.save = chkWrap.Checked();
                       request.defaultExtension = "poc";
                       Log(Windows().FileDialog(request).value_or("none"));
                   }};
    Button cmdModal{*this, "cmdModal", Button::HiddenButton};
    Button cmdTimer{*this, "cmdTimer", [this] { Timer1.Start(); }};
    Button cmdRun{*this, "cmdRun", [this] {
                      cancelled = false;
                      for (int i = 1; i <= steps && !cancelled; ++i) {
                          lblNote.SetText(std::to_string(i) + " done");
                          Windows().SystemClock().Sleep(std::chrono::milliseconds(1));
                          Windows().YieldBriefly();
                      }
                      Log("run over");
                  }};
    Button cmdCancel{*this, "cmdCancel", [this] { cancelled = true; }};
    Button cmdQuit{*this, "cmdQuit", [this] { Windows().Quit(); }};
    bool cancelled = false;
    int steps = 1000;  ///< of a run

    void Log(const std::string& what) { txtLog.SetText(txtLog.Text() + what + ";"); }
};

}  // namespace mailvane::test
