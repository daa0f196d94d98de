#pragma once

#include <string>
#include <vector>

#include "core/Workbench.h"
#include "merge/run/MergePlan.h"

namespace mailvane {

/// The options of a merge run and its Start button. Opened for the message of frmViewMerge and the
/// table of frmViewDatabase; runs once and unloads.
class frmMerge final : public WorkbenchForm {
public:
    explicit frmMerge(Workbench& wb);

    Label Label1{*this, "Label1"};
    Label Label2{*this, "Label2"};
    OptionButton optPersonal{*this, "optPersonal", true};
    OptionButton optBulk{*this, "optBulk"};
    TextBox txtPacket{*this, "txtPacket", MergeOptions::UsualPacketSize};
    TextBox txtTo{*this, "txtTo", "recipients@example.com"};
    ComboBox cmbEmail{*this, "cmbEmail"};
    CheckBox chkCreate{*this, "chkCreate"};
    CheckBox chkMax{*this, "chkMax"};
    TextBox txtMax{*this, "txtMax", "5000"};
    CheckBox chkFractional{*this, "chkFractional"};
    TextBox txtFractional1{*this, "txtFractional1"};
    TextBox txtFractional2{*this, "txtFractional2"};
    CheckBox chkDate{*this, "chkDate"};
    ComboBox cmbField{*this, "cmbField"};
    DatePicker Date1{*this, "Date1"};
    DatePicker Date2{*this, "Date2"};
    CheckBox chkServer{*this, "chkServer"};
    Button SSCommand1{*this, "SSCommand1"};
    TextBox txtSMTPServer{*this, "txtSMTPServer"};
    TextBox txtSMTPPort{*this, "txtSMTPPort"};
    CheckBox chkSaveSentMessages{*this, "chkSaveSentMessages"};
    Button cmdRemoveRecords{*this, "cmdRemoveRecords"};
    Button cmdRemoveAddresses{*this, "cmdRemoveAddresses"};
    Button cmdCompare{*this, "cmdCompare"};
    Button cmdText{*this, "cmdText"};
    Button cmdClean{*this, "cmdClean"};
    Button cmdStart{*this, "cmdStart"};
    Button cmdPreview{*this, "cmdPreview"};
    Button cmdCheck{*this, "cmdCheck"};
    Button cmdCancel{*this, "cmdCancel"};
    Button SSCommand2{*this, "SSCommand2"};

    /// An option that is chosen and makes no sense, with what the run asks about it.
    struct Doubt {
        CheckBox* option;
        std::string text;
    };
    /// In the order in which the run asks. Blanks around the numbers are taken away.
    std::vector<Doubt> Doubts();
    bool PacketSizeMakesSense() const;
    /// What is chosen, but for the options in doubt; a packet size in doubt is the usual one.
    MergeOptions Options();

protected:
    void OnLoad() override;
    bool OnQueryUnload() override;

private:
    void WireControls();
    void AttachTableTools();
    void FillColumns();
    void CopySettings();
    void EnableBulkFields();
    void CopyServerChoice();
    bool DateColumnChosen() const;
    void CheckDateColumn();
    void LeaveDateColumn();
    void CheckRowNumber(TextBox& field);
    void Cancel();
};

}  // namespace mailvane
