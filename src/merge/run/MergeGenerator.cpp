#include "merge/run/MergeGenerator.h"

#include "core/Machine.h"
#include "core/Paths.h"
#include "core/Waiting.h"
#include "merge/tags/ExecuteTag.h"
#include "store/MessageStore.h"

namespace mailvane {

namespace {

enum SystemTag : std::size_t { Time, Date, Address, Resources };

std::string SystemValue(const Workbench& wb, std::size_t tag) {
    switch (tag) {
        case Time:
            return wb.platform.clock.Now().LongTime();
        case Date:
            return wb.platform.clock.Now().ShortDate();
        case Address:
            return GetLocalIpAddress();
        default: {
            const int percent = FreeResourcesPercent();
            return percent == 0 ? std::string() : std::to_string(percent) + "%";
        }
    }
}

}  // namespace

void FillInSystemTags(const Workbench& wb, std::string& text) {
    if (text.find("[!") == std::string::npos) return;
    static const TagList tags({"!SYSTIME", "!SYSDATE", "!SYSIP", "!SYSRESOURCES"});
    std::string value;
    tags.Replace(text, [&](std::size_t tag) {
        value = SystemValue(wb, tag);
        return &value;
    });
}

MergeGenerator::MergeGenerator(Workbench& wb, const frmViewMerge& message,
                               std::shared_ptr<Recordset> recipients, MergeAddressing addressing)
    : wb_(wb),
      message_(message),
      settings_(wb.forms.Get<frmSettings>()),
      addressing_(std::move(addressing)),
      fieldTags_(message.lstFields.Items()),
      row_(std::move(recipients), fieldTags_.Names()) {}

DaoError MergeGenerator::GenerateMergeMessage() {
    BuildMessage();
    RunTags();
    return StoreMessage();
}

/// All that is read of the row and of the forms is read here, before anything waits.
void MergeGenerator::BuildMessage() {
    row_.Renew();
    ReadMessageParts();
    if (addressing_.personal) {
        FindFiles();
        FindTags();
        FillInFields();
    }
    FillInSystemValues();
    RemoveFieldTags();
    Address();
    record_.Priority = message_.PriorityValue();
}

void MergeGenerator::WriteNothing() {
    program_.MissingFile = script_.MissingFile = MissingTagFile::Leave;
}

void MergeGenerator::RunTags() {
    const auto keepWaiting = [this] {
        YieldBriefly(wb_);
        return !wb_.platform.windows.Quitting() && (!KeepWaiting || KeepWaiting());
    };
    if (programFound_) program_.Run(wb_, keepWaiting);
    if (scriptFound_) script_.Call(wb_, keepWaiting);
}

DaoError MergeGenerator::StoreMessage() {
    record_.Date = wb_.platform.clock.Now();
    record_.Size = static_cast<std::int32_t>(record_.Body.size() + record_.Subject.size() +
                                             record_.AllHeaders.size());
    return TrySaveMessageRecord(wb_, record_, "", OutboxFolder, false, 0, "Unread", false);
}

void MergeGenerator::ReadMessageParts() {
    record_.Body = message_.txtBody.Text();
    record_.Subject = message_.txtSubject.Text();
    record_.From = message_.txtFrom.Text();
    record_.ReplyTo = settings_.txtReplyTo.Text();
    record_.Attach = message_.lstAttach.FirstItem();
    record_.HTML = message_.lstHTML.FirstItem();
    record_.ContentType = message_.lstHTML.Count() > 0 ? "html" : "text";
}

/// The HTML code of the message before stays where this row's file is missing.
void MergeGenerator::FindFiles() {
    const auto value = [this](std::size_t field) { return row_.Text(field); };
    fieldTags_.Replace(record_.Attach, value);
    fieldTags_.Replace(record_.HTML, value);
    if (!FileExists(record_.Attach)) record_.Attach.clear();
    if (FileExists(record_.HTML)) {
        record_.HTMLCode = ReadFileText(record_.HTML);
        record_.ContentType = "html";
    } else {
        record_.HTML.clear();
        record_.ContentType = "text";
    }
}

void MergeGenerator::FindTags() {
    if (program_.FindProgramTag(wb_, record_) != NoExecuteTag) programFound_ = true;
    if (script_.FindCgiTag(wb_, record_) != NoExecuteTag) scriptFound_ = true;
}

void MergeGenerator::FillInFields() {
    const auto value = [this](std::size_t field) { return row_.Text(field); };
    for (std::string* text : {&record_.Body, &record_.Subject, &record_.From, &record_.HTMLCode})
        fieldTags_.Replace(*text, value);
    if (programFound_) program_.FillIn(fieldTags_, value);
    if (scriptFound_) script_.FillIn(fieldTags_, value);
}

void MergeGenerator::FillInSystemValues() {
    for (std::string* text : {&record_.Body, &record_.Subject, &record_.HTMLCode})
        FillInSystemTags(wb_, *text);
}

/// Takes out what could not be filled in: columns that are Null, tags that came in with a value,
/// and in bulk messages all of them.
void MergeGenerator::RemoveFieldTags() {
    for (std::string* text :
         {&record_.Body, &record_.Subject, &record_.Attach, &record_.From, &record_.HTMLCode})
        fieldTags_.Remove(*text);
}

/// A row without an address leaves the one of the message before.
void MergeGenerator::Address() {
    if (!addressing_.personal) {
        record_.To = addressing_.bulkToText;
        record_.BCC = PacketText;
    } else if (const std::string* address = row_.Text(addressing_.toColumn)) {
        record_.To = *address;
    }
}

}  // namespace mailvane
