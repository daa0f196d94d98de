#pragma once

#include "platform/forms/Form.h"

namespace mailvane {

/// One control of every kind.
class frmEvery final : public Form {
public:
    explicit frmEvery(WindowSystem& windows) : Form(windows, "frmEvery", "Every kind") {}

    ActiveBar ActiveBar1{*this, "ActiveBar1"};
    Label lblTitle{*this, "lblTitle"};
    TextBox txtLine{*this, "txtLine", "first"};
    TextBox txtNotes{*this, "txtNotes"};
    RichTextBox txtBody{*this, "txtBody"};
    HtmlView htmPage{*this, "htmPage"};
    CheckBox chkOne{*this, "chkOne", true};
    OptionButton optA{*this, "optA", true, "letters"};
    OptionButton optB{*this, "optB", false, "letters"};
    ComboBox cmbFixed{*this, "cmbFixed"};
    ComboBox cmbFree{*this, "cmbFree", ComboBox::Style::Editable};
    ListBox lstOne{*this, "lstOne"};
    ListBox lstMany{*this, "lstMany", ListBox::Selection::Multiple};
    ListBoks lbxRules{*this, "lbxRules"};
    Slider sldMinutes{*this, "sldMinutes", 1, 30, 5};
    DatePicker datFrom{*this, "datFrom", *DateTime::FromParts(2001, 2, 3)};
    ProgressBar Progress1{*this, "Progress1"};
    Grid Grid1{*this, "Grid1"};
    Tabs Tab1{*this, "Tab1"};
    Panel pnlTable{*this, "pnlTable"};
    Button cmdOk{*this, "cmdOk"};
    Button cmdHidden{*this, "cmdHidden", Button::HiddenButton};
    Timer Timer1{*this, "Timer1", std::chrono::milliseconds(1)};
};

}  // namespace mailvane
