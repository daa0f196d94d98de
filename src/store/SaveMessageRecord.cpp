#include "core/Paths.h"
#include "core/settings/frmSettings.h"
#include "core/text/Text.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

void AddSignature(const frmSettings& settings, std::string& body) {
    const bool fromFile = settings.optFile.IsSet();
    if (fromFile && FileExists(settings.txtSigFile.Text()))
        body += ReadFileText(settings.txtSigFile.Text());
    if (!fromFile) body += settings.txtSignature.Text();
}

void DeleteRow(Database& store, const std::string& folder, std::int32_t id) {
    // A row that has gone already, or a folder that has, is no hindrance to the new one.
    static_cast<void>(
        store.Execute("DELETE * FROM [" + folder + "] WHERE ID = " + std::to_string(id)));
}

/// The folder of the last save is kept open: a merge run writes tens of thousands of rows.
DaoError UseFolder(ApplicationState& state, const std::string& folder) {
    const auto& current = state.CurrentFolderRecordset;
    if (current && current->IsOpen() && current->Name() == folder) return {};
    auto opened = state.MessageStore->OpenRecordset(folder);
    if (opened.Failed()) return opened.Error();
    state.CurrentFolderRecordset = *opened;
    return {};
}

/// True when the row at the recordset's position is that message.
DaoResult<bool> HoldsMessage(const Recordset& folder, const MessageRecord& record) {
    const DaoResult<MessageRecord> row = ReadMessageRow(folder);
    if (row.Failed()) return row.Error();
    return row->From == record.From && row->To == record.To && row->Subject == record.Subject &&
           row->Date == record.Date;
}

DaoError RemoveNewest(Recordset& folder, const MessageRecord& record) {
    if (DaoError failed = folder.MoveLast(); failed.Failed()) return failed;
    const DaoResult<bool> same = HoldsMessage(folder, record);
    if (same.Failed()) return same.Error();
    return *same ? folder.Delete() : DaoError();
}

DaoError AddRow(Recordset& folder, const MessageRecord& record) {
    if (DaoError failed = folder.AddNew(); failed.Failed()) return failed;
    DaoError outcome = WriteMessageRow(folder, record);
    if (outcome.Ok()) outcome = folder.Update();
    if (outcome.Failed()) folder.CancelUpdate();
    return outcome;
}

}  // namespace

void FinishForSending(const Workbench& wb, MessageRecord& record) {
    record.Status = "Read";
    const frmSettings* settings = wb.forms.Find<frmSettings>();
    if (!settings) return;
    if (settings->chkAddSignature.Checked()) AddSignature(*settings, record.Body);
    if (settings->chkWrap.Checked())
        record.Body =
            WrapText(std::move(record.Body), static_cast<int>(NumberOf(settings->txtWrap.Text())));
}

DaoError TrySaveMessageRecord(Workbench& wb, MessageRecord& record, const std::string& oldFolder,
                              const std::string& folder, bool deleteOld, std::int32_t oldId,
                              const std::string& status, bool undoLast) {
    if (!wb.state.MessageStore || !wb.state.MessageStore->IsOpen()) {
        if (DaoError failed = EnsureMessageStore(wb); failed.Failed()) return failed;
        if (DaoError closed = OpenMessageStore(wb); closed.Failed()) return closed;
    }
    if (!oldFolder.empty() && oldFolder != " " && deleteOld && oldId != -1)
        DeleteRow(*wb.state.MessageStore, oldFolder, oldId);
    if (Trim(folder).empty()) return {};
    if (DaoError failed = UseFolder(wb.state, folder); failed.Failed()) return failed;
    if (undoLast) return RemoveNewest(*wb.state.CurrentFolderRecordset, record);
    record.Status = status;
    if (folder == OutboxFolder) FinishForSending(wb, record);
    return AddRow(*wb.state.CurrentFolderRecordset, record);
}

void SaveMessageRecord(Workbench& wb, MessageRecord& record, const std::string& oldFolder,
                       const std::string& folder, bool deleteOld, std::int32_t oldId,
                       const std::string& status, bool undoLast) {
    TrySaveMessageRecord(wb, record, oldFolder, folder, deleteOld, oldId, status, undoLast)
        .Ignore();
}

}  // namespace mailvane
