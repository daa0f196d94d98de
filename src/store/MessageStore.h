#pragma once

#include <string>

#include "core/Workbench.h"
#include "store/MessageRecord.h"

namespace mailvane {

inline constexpr const char* InboxFolder = "Inbox";
inline constexpr const char* OutboxFolder = "Outbox";
inline constexpr const char* SentItemsFolder = "Sent Items";
inline constexpr const char* DeletedItemsFolder = "Deleted Items";
inline constexpr const char* DraftsFolder = "Drafts";
inline constexpr const char* ImportedMessagesFolder = "Imported Messages";

std::string MessageStorePath(const Workbench& wb);

/// Makes messages.dat with its six folders when it is missing; an existing file is left alone.
DaoError EnsureMessageStore(Workbench& wb);
/// Opens the store for the whole program when it is not open.
DaoError OpenMessageStore(Workbench& wb);
void CloseMessageStore(Workbench& wb);

/// Appends the columns of a mail folder and its index to the store as table `name`.
DaoError AddFolderColumns(Database& store, const std::string& name);
/// Gives every folder a column that older stores lack; Inbox alone tells whether it is there.
void AddMissingColumn(Workbench& wb, const std::string& name, FieldType type,
                      const std::string& defaultValue);
/// The same for the index of the keys.
void AddMissingIndex(Workbench& wb);

/// What every message gets once, on its way into the Outbox: signature and wrap of the project.
void FinishForSending(const Workbench& wb, MessageRecord& record);

/// The only writer of new rows. Deletes the old row first when asked to, then stores `record` in
/// `folder` (nothing when that is blank), with signature and wrap on the way into Outbox; with
/// `undoLast` removes the newest row of `folder` if it is this message. Failures pass in silence.
void SaveMessageRecord(Workbench& wb, MessageRecord& record, const std::string& oldFolder,
                       const std::string& folder, bool deleteOld, std::int32_t oldId,
                       const std::string& status, bool undoLast);
/// The same for callers that must know whether the message is stored. A failure to delete the old
/// row is passed over here too.
DaoError TrySaveMessageRecord(Workbench& wb, MessageRecord& record, const std::string& oldFolder,
                              const std::string& folder, bool deleteOld, std::int32_t oldId,
                              const std::string& status, bool undoLast);

}  // namespace mailvane
