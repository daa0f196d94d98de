#include "merge/run/MergeGenerator.h"

#include <algorithm>
#include <utility>

#include "core/Paths.h"
#include "core/Waiting.h"
#include "merge/tags/FieldTags.h"
#include "store/MessageStore.h"

namespace mailvane {

MergeGenerator::MergeGenerator(Workbench& wb, const MergePlan& plan, MissingTagFile missingFile)
    : wb_(wb),
      plan_(plan),
      columns_(plan.message.columns),
      tags_(MakeMessageTags({wb, columns_, missingFile})),
      row_(plan.recipients, columns_.Names()) {}

DaoError MergeGenerator::GenerateMergeMessage() {
    if (DaoError failed = BuildMessage(); failed.Failed()) return failed;
    RunTags();
    return StoreMessage();
}

/// All that is read of the row is read here, before anything waits.
DaoError MergeGenerator::BuildMessage() {
    const TagList::ValueOf row = [this](std::size_t column) { return row_.Text(column); };
    const bool personal = plan_.options.personal;
    row_.Renew();
    ReadMessageParts();
    bool fits = !personal || FindFiles(row);
    if (personal) FindTags();
    for (const auto& tag : tags_)
        fits = fits && tag->FillIn(record_, personal ? &row : nullptr);
    if (!fits)
        return {dao_error::FieldTooSmall,
                "A text of the message grows past 16 MB by the values of the row."};
    for (const auto& tag : tags_)
        tag->CleanUp(record_);
    Address();
    return {};
}

bool MergeGenerator::HasTagsToRun() const {
    return std::ranges::any_of(tags_, [](const auto& tag) { return tag->HasToRun(); });
}

void MergeGenerator::RunTags() {
    const auto keepWaiting = [this] {
        YieldBriefly(wb_);
        return !wb_.platform.windows.Quitting() && (!KeepWaiting || KeepWaiting());
    };
    for (const auto& tag : tags_)
        tag->Run(keepWaiting);
}

DaoError MergeGenerator::StoreMessage() {
    record_.Date = wb_.platform.clock.Now();
    record_.Size = static_cast<std::int32_t>(record_.Body.size() + record_.Subject.size() +
                                             record_.AllHeaders.size());
    return TrySaveMessageRecord(wb_, record_, "", OutboxFolder, false, 0, "Unread", false);
}

void MergeGenerator::ReadMessageParts() {
    const MergeMessage& message = plan_.message;
    record_.Body = message.body;
    record_.Subject = message.subject;
    record_.From = message.from;
    record_.ReplyTo = message.replyTo;
    record_.Priority = message.priority;
    record_.Attach = message.attachment;
    record_.HTML = message.htmlFile.value_or(std::string());
    record_.ContentType = message.htmlFile ? "html" : "text";
}

/// The HTML code of the message before stays where this row's file is missing.
bool MergeGenerator::FindFiles(const TagList::ValueOf& row) {
    const bool fits =
        FillInPath(columns_, record_.Attach, row) && FillInPath(columns_, record_.HTML, row);
    if (!FileExists(record_.Attach)) record_.Attach.clear();
    if (FileExists(record_.HTML)) {
        record_.HTMLCode = writtenCode_ = ReadFileText(record_.HTML);
        record_.ContentType = "html";
    } else {
        record_.HTML.clear();
        record_.ContentType = "text";
    }
    return fits;
}

/// In the code as the user wrote it: what came in with the values of an earlier row runs nothing.
void MergeGenerator::FindTags() {
    const bool earlier = record_.HTML.empty();
    const std::string code = std::exchange(record_.HTMLCode, writtenCode_);
    for (const auto& tag : tags_)
        tag->Find(record_);
    writtenCode_ = record_.HTMLCode;
    if (earlier) record_.HTMLCode = code;
}

/// A row without an address leaves the one of the message before.
void MergeGenerator::Address() {
    if (!plan_.options.personal) {
        record_.To = plan_.options.bulkTo;
        record_.BCC = PacketText;
    } else if (const std::string* address = row_.Text(plan_.message.addressColumn)) {
        record_.To = *address;
        std::erase(record_.To, '\0');
    }
}

}  // namespace mailvane
