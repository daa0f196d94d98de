#include "merge/check/MergeCheck.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

#include "core/Paths.h"
#include "core/text/Text.h"
#include "merge/check/AddressCheck.h"
#include "merge/run/MergeGenerator.h"
#include "platform/net/mime/MailAddress.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestName = 64;  // of a column; longer brackets are no tag

/// What stands between brackets in a text, as often as it does.
std::vector<std::string> TagsIn(const std::string& text) {
    std::vector<std::string> tags;
    for (std::size_t open = text.find('['); open != std::string::npos;) {
        const std::size_t next = text.find_first_of("[]\r\n", open + 1);
        if (next == std::string::npos) break;
        if (text[next] == ']' && next > open + 1 && next - open - 1 <= LongestName)
            tags.push_back(text.substr(open + 1, next - open - 1));
        open = text[next] == '[' ? next : text.find('[', next);
    }
    return tags;
}

bool IsLongerThanAColumn(const std::string& text) {
    return text.size() > DefaultTextSize &&
           std::ranges::count_if(text, [](char sign) {
               return (static_cast<unsigned char>(sign) & 0xC0) != 0x80;
           }) > DefaultTextSize;
}

/// Carries one check through.
class MergeCheck {
public:
    MergeCheck(Workbench& wb, const MergePlan& plan)
        : wb_(wb),
          plan_(plan),
          generator_(wb, plan, MissingTagFile::Leave),
          addresses_(plan.options.personal) {}

    std::vector<MergeFinding> Run(const std::function<bool(std::int64_t)>& goOn) {
        ReadWrittenTexts();
        const std::int64_t rows = plan_.UsedRecords();
        if (!plan_.options.personal) CheckMessage(std::nullopt);
        plan_.GoTo(0).Ignore();
        for (std::int64_t done = 0; done < rows && goOn(done);)
            plan_.database->OneRead([&] { return CheckGroup(done, rows); }).Ignore();
        return Findings();
    }

private:
    struct Column {
        bool inHeader = false;
        MergeFinding empty;
        MergeFinding broken;
    };

    /// The rows from one yield to the next.
    DaoError CheckGroup(std::int64_t& done, std::int64_t rows) {
        do {
            if (const auto row = plan_.recipients->GetBookmark(); row.Ok()) CheckRow(done, *row);
            ++done;
            plan_.recipients->MoveNext().Ignore();
        } while (done < rows && !wb_.platform.windows.YieldIsDue());
        return {};
    }

    // The message as it was written.

    void ReadWrittenTexts() {
        const MergeMessage& message = plan_.message;
        Read(message.from, true);
        Read(message.subject, true);
        Read(message.body, false);
        Read(message.attachment, false);
        Read(message.htmlFile.value_or(std::string()), false);
        ReadObjections(message.body);
    }

    void Read(const std::string& text, bool inHeader) {
        for (const std::string& tag : TagsIn(text)) {
            const auto column = generator_.Columns().Find(tag);
            if (!Owned(tag))
                Count("The tag [" + tag + "] names no column", tag);
            else if (column && !plan_.options.personal)
                Count("The tag [" + tag + "] is taken out of messages for many", tag);
            else if (column)
                Use(*column, inHeader);
        }
    }

    bool Owned(const std::string& tag) const {
        return std::ranges::any_of(generator_.Tags(),
                                   [&](const auto& kind) { return kind->Owns(tag); });
    }

    void Count(const std::string& text, const std::string& tag) {
        MergeFinding& finding = tagFindings_[ToLower(tag)];
        if (finding.text.empty()) finding.text = text;
        ++finding.count;
    }

    void Use(std::size_t position, bool inHeader) {
        const std::string& name = generator_.Columns().Names()[position];
        Column& column = columns_[position];
        column.inHeader |= inHeader;
        column.empty.text = "The column '" + name + "' is empty";
        column.broken.text = "The column '" + name + "' has a line break in a header field";
    }

    void ReadObjections(const std::string& text) {
        if (!plan_.options.personal) return;
        for (const auto& kind : generator_.Tags())
            if (const std::string objection = kind->Objection(text); !objection.empty())
                ++tagFindings_[objection].count, tagFindings_[objection].text = objection;
    }

    // Each message as it is made.

    void CheckRow(std::int64_t number, Bookmark row) {
        RecipientRow& values = generator_.Row();
        if (!plan_.options.personal) {
            values.Renew();
            if (number >= InPackets()) Note(left_, row);
            return addresses_.Look(values.Text(plan_.options.addressColumn), row);
        }
        if (CheckMessage(row)) CheckColumns(row);
        addresses_.Look(values.Text(plan_.message.addressColumn), row);
    }

    /// Records that stand in a packet that is full.
    std::int64_t InPackets() const { return plan_.MessageCount() * plan_.PacketRecords(); }

    void CheckColumns(Bookmark row) {
        for (auto& [position, column] : columns_) {
            const std::string* value = generator_.Row().Text(position);
            if (!value || Trim(*value).empty())
                Note(column.empty, row);
            else if (column.inHeader && value->find_first_of("\r\n") != std::string::npos)
                Note(column.broken, row);
        }
    }

    /// Without a row: the one message that all packets get. False when it cannot be made.
    bool CheckMessage(std::optional<Bookmark> row) {
        const auto note = [row](MergeFinding& finding) {
            ++finding.count;
            if (row) finding.rows.push_back(*row);
        };
        if (generator_.BuildMessage().Failed()) {
            note(tooLong_);
            return false;
        }
        const MessageRecord& made = generator_.Message();
        for (const auto& [name, text] : {std::pair("sender", &made.From),
                                         {"subject", &made.Subject},
                                         {"To line", &made.To},
                                         {"attachment's path", &made.Attach},
                                         {"HTML file's path", &made.HTML}}) {
            if (!IsLongerThanAColumn(*text)) continue;
            MergeFinding& finding = longHeaders_[name];
            finding.text = std::string("The ") + name + " is longer than the Outbox takes";
            note(finding);
        }
        const std::vector<std::string> senders = AddressesOf(made.From);
        if (senders.empty() || !IsMailbox(senders.front())) note(badSender_);
        if (!plan_.message.attachment.empty() && !FileExists(made.Attach)) note(noAttachment_);
        if (!plan_.message.htmlFile) return true;
        if (FileExists(made.HTML))
            ReadPage(made.HTML);
        else
            note(noHtmlFile_);
        return true;
    }

    /// Every page is read once, whichever rows choose it. Its tags stay as they are in messages for
    /// many.
    void ReadPage(const std::string& path) {
        if (!pages_.insert(path).second) return;
        const std::string page = ReadFileText(path);
        if (plan_.options.personal) {
            Read(page, false);
            ReadObjections(page);
        } else {
            for (const std::string& tag : TagsIn(page))
                if (Owned(tag))
                    Count("The tag [" + tag + "] of the HTML file stays in messages for many",
                          "file " + tag);
        }
    }

    std::vector<MergeFinding> Findings() {
        std::vector<MergeFinding> all;
        const auto add = [&all](MergeFinding& finding) {
            if (finding.count > 0) all.push_back(std::move(finding));
        };
        for (auto& [tag, finding] : tagFindings_)
            add(finding);
        beyond_.count = plan_.total - plan_.UsedRecords();
        add(beyond_);
        add(left_);
        for (MergeFinding& finding : addresses_.Findings())
            add(finding);
        for (MergeFinding* finding : {&badSender_, &tooLong_})
            add(*finding);
        for (auto& [name, finding] : longHeaders_)
            add(finding);
        for (MergeFinding* finding : {&noAttachment_, &noHtmlFile_})
            add(*finding);
        for (auto& [position, column] : columns_) {
            add(column.empty);
            add(column.broken);
        }
        return all;
    }

    Workbench& wb_;
    const MergePlan& plan_;
    MergeGenerator generator_;
    AddressCheck addresses_;
    std::set<std::string> pages_;
    std::map<std::string, MergeFinding> tagFindings_;
    std::map<std::size_t, Column> columns_;
    std::map<std::string, MergeFinding> longHeaders_;
    MergeFinding beyond_{"A row beyond the last record", 0, {}};
    MergeFinding left_{"In no packet: the last one is not full", 0, {}};
    MergeFinding badSender_{"The sender is no e-mail address", 0, {}};
    MergeFinding tooLong_{"A text of the message grows past 16 MB by its values", 0, {}};
    MergeFinding noAttachment_{"The attachment is not there", 0, {}};
    MergeFinding noHtmlFile_{"The HTML file is not there", 0, {}};
};

}  // namespace

std::vector<MergeFinding> CheckMerge(Workbench& wb, const MergePlan& plan,
                                     const std::function<bool(std::int64_t done)>& goOn) {
    if (!plan.recipients) return {};
    return MergeCheck(wb, plan).Run(goOn);
}

}  // namespace mailvane
