#include "store/MessageStore.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include "core/Paths.h"
#include "core/settings/Settings.h"
#include "core/text/Text.h"
#include "platform/os/Files.h"

namespace mailvane {

namespace {

constexpr const char* StoreFile = "/messages.dat";
constexpr const char* BuiltInFolders[] = {InboxFolder,        OutboxFolder, SentItemsFolder,
                                          DeletedItemsFolder, DraftsFolder, ImportedMessagesFolder};

/// The keys of a folder in a few dense pages: listing it does not pass over the messages' bodies.
constexpr const char* KeysIndex = "Keys";

Field Column(const std::string& name, FieldType type) {
    Field column;
    column.name = name;
    column.type = type;
    column.allowZeroLength = column.IsText();
    return column;
}

Field RowIdentity() {
    Field column = Column("ID", FieldType::Long);
    column.attributes = AutoIncrementAttribute;
    return column;
}

Field FailedAttempts() {
    Field column = Column("Retries", FieldType::Integer);
    column.defaultValue = "0";
    return column;
}

DaoError MakeStore(const std::string& path) {
    const auto workspace = Workspace::Create();
    const auto store = workspace->CreateDatabase(path);
    if (store.Failed()) return store.Error();
    MakePrivate(path);  // before there is any mail in it
    DaoError outcome;
    for (const char* folder : BuiltInFolders)
        if (outcome.Ok()) outcome = AddFolderColumns(**store, folder);
    workspace->Close();
    return outcome;
}

void RemoveStoreFiles(const std::string& path) {
    for (const char* companion : {"", "-wal", "-shm"})
        DeleteFile(path + companion);
}

}  // namespace

std::string MessageStorePath(const Workbench& wb) {
    return wb.platform.programFolder + StoreFile;
}

DaoError EnsureMessageStore(Workbench& wb) {
    const std::string path = MessageStorePath(wb);
    // What else stands under that name is not ours to replace: a link to a place that is not
    // mounted, a folder, an empty file. Opening it tells what is wrong.
    if (std::filesystem::exists(std::filesystem::symlink_status(path))) return {};
    // Made under another name first: a store that exists has all its folders.
    const std::string unfinished = path + ".new";
    RemoveStoreFiles(unfinished);
    DaoError outcome = MakeStore(unfinished);
    if (outcome.Ok() && std::rename(unfinished.c_str(), path.c_str()) != 0)
        outcome = MakeDaoError(dao_error::CannotOpenFile, path);
    if (outcome.Failed()) RemoveStoreFiles(unfinished);
    return outcome;
}

DaoError OpenMessageStore(Workbench& wb) {
    ApplicationState& state = wb.state;
    if (state.MessageStore && state.MessageStore->IsOpen()) return {};
    state.CurrentFolderRecordset = nullptr;
    if (!state.MainWorkspace) state.MainWorkspace = Workspace::Create();
    auto opened = state.MainWorkspace->OpenDatabase(MessageStorePath(wb));
    if (opened.Failed()) return opened.Error();
    state.MessageStore = *opened;
    return {};
}

void CloseMessageStore(Workbench& wb) {
    wb.state.CurrentFolderRecordset = nullptr;
    if (wb.state.MessageStore) wb.state.MessageStore->Close();
    wb.state.MessageStore = nullptr;
}

DaoError AddFolderColumns(Database& store, const std::string& name) {
    TableDef table;
    table.name = name;
    using enum FieldType;
    table.fields = {Column("From", Text),   Column("To", Text),          Column("Subject", Text),
                    Column("Date", Date),   Column("Body", Memo),        Column("CC", Text),
                    Column("BCC", Memo),    Column("Attach", Text),      Column("AllHeaders", Memo),
                    Column("Size", Text),   Column("Priority", Text),    Column("ReplyTo", Text),
                    Column("Mailer", Text), Column("ContentType", Text), Column("HTML", Text),
                    RowIdentity(),          Column("HTMLCode", Memo),    Column("Status", Text),
                    FailedAttempts()};
    table.indexes = {{.name = "Index1", .fields = {"ID"}, .primary = true, .unique = false},
                     {.name = KeysIndex, .fields = {"ID"}}};
    return store.AppendTable(table);
}

void AddMissingColumn(Workbench& wb, const std::string& name, FieldType type,
                      const std::string& defaultValue) {
    const auto workspace = Workspace::Create();
    const auto store = workspace->OpenDatabase(MessageStorePath(wb));
    if (store.Failed()) return;
    const auto inbox = (*store)->GetTableDef(InboxFolder);
    if (inbox.Failed() || inbox->FindField(name)) return;
    Field column = Column(name, type);
    column.defaultValue = defaultValue;
    for (const std::string& folder : (*store)->UserTableNames().ValueOr({}))
        if ((*store)->AppendField(folder, column).Failed()) return;
    SaveUserSetting(wb, "Columns", name, "0");
}

void AddMissingIndex(Workbench& wb) {
    const auto workspace = Workspace::Create();
    const auto store = workspace->OpenDatabase(MessageStorePath(wb));
    if (store.Failed()) return;
    const auto inbox = (*store)->GetTableDef(InboxFolder);
    const auto isKeys = [](const Index& index) { return index.name == KeysIndex; };
    if (inbox.Failed() || std::any_of(inbox->indexes.begin(), inbox->indexes.end(), isKeys)) return;
    // The Inbox comes first and is the mark: what fails after it only lists more slowly.
    for (const std::string& folder : (*store)->UserTableNames().ValueOr({}))
        if ((*store)->AppendIndex(folder, {.name = KeysIndex, .fields = {"ID"}}).Failed()) return;
}

}  // namespace mailvane
