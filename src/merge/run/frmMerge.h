#pragma once

#include <cstdint>
#include <string>

#include "core/Workbench.h"
#include "merge/check/MergeCheck.h"

namespace mailvane {

/// The options of a merge run and its Start button. Opened for the message of frmViewMerge and the
/// table of frmViewDatabase; runs once and unloads.
class frmMerge final : public WorkbenchForm {
public:
    explicit frmMerge(Workbench& wb);

    static constexpr const char* UsualPacketSize = "19";  ///< addresses in a bulk message

    Label Label1{*this, "Label1"};
    Label Label2{*this, "Label2"};
    OptionButton optPersonal{*this, "optPersonal", true};
    OptionButton optBulk{*this, "optBulk"};
    TextBox txtPacket{*this, "txtPacket", UsualPacketSize};
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
    Button cmdPreview{*this, "cmdPreview", [this] { Preview(); }};
    Button cmdCheck{*this, "cmdCheck", [this] { Check(); }};
    Button cmdCancel{*this, "cmdCancel"};
    Button SSCommand2{*this, "SSCommand2"};

    /// What the run opens of a table: its name, or a query of its first rows by chkMax.
    std::string RecipientsSource(const std::string& table) const;
    /// A name in the brackets that statements want.
    static std::string Bracketed(const std::string& name);
    std::string DateFilter() const;  ///< the condition on those rows by chkDate
    // The rows of chkFractional, counted from 1.
    std::int64_t FirstRow() const;
    std::int64_t LastRow() const;
    /// The column chosen in cmbField holds dates.
    bool DateColumnChosen() const;
    void OnCloseBox() override { Cancel(); }

protected:
    void OnLoad() override;

private:
    void WireControls();
    void DisableToolsOfLaterVersions();
    void FillColumns();
    void CopySettings();
    void EnableBulkFields();
    void CopyServerChoice();
    void CheckDateColumn();
    void LeaveDateColumn();
    void CheckRowNumber(TextBox& field);
    void Start();
    void Check();
    void Preview();
    MergeRows NarrowedRows() const;
    void Cancel();
    bool running_ = false;
};

}  // namespace mailvane
