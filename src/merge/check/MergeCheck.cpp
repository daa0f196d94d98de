#include "merge/check/MergeCheck.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string_view>

#include "core/Paths.h"
#include "core/text/Text.h"
#include "merge/tags/TagList.h"
#include "platform/net/mime/MailAddress.h"

namespace mailvane {

namespace {

constexpr std::size_t LongestName = 64;  ///< of a column; longer brackets are no tag
constexpr std::size_t GroupSize = 500;   ///< rows that are read at once
constexpr std::string_view SystemTags[] = {"!systime", "!sysdate", "!sysip", "!sysresources"};

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

bool IsSystemTag(const std::string& tag) {
    return std::ranges::find(SystemTags, ToLower(tag)) != std::end(SystemTags);
}

/// FNV-1a; equal addresses are told by it alone: among a million of them two others meet once in
/// thirty million lists.
std::uint64_t HashOf(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

/// Carries one check through.
class MergeCheck {
public:
    MergeCheck(const MergeParts& parts, const MergeRows& rows)
        : parts_(parts),
          rows_(rows),
          tags_(ColumnNames(*rows.recipients)),
          attachment_{"attachment", parts.attachment},
          htmlFile_{"HTML file", parts.htmlFile} {
        FindUsedColumns();
    }

    std::vector<MergeFinding> Run(const std::function<bool(std::size_t)>& goOn) {
        for (std::size_t done = 0; done < rows_.count && goOn(done); done += GroupSize)
            CheckGroup(rows_.first + done, std::min(GroupSize, rows_.count - done));
        FindRepeatedAddresses();
        return Findings();
    }

private:
    struct Column {
        std::size_t position;
        bool inHeader;
        MergeFinding empty;
        MergeFinding broken;
    };
    struct File {
        const char* kind;
        const std::string& path;
        MergeFinding missing = {};
        std::optional<std::string> last = {};  ///< the path looked for last
        bool lastFound = false;
    };

    static std::vector<std::string> ColumnNames(const Recordset& recipients) {
        std::vector<std::string> names;
        for (const Field& field : recipients.Fields())
            names.push_back(field.name);
        return names;
    }

    void FindUsedColumns() {
        std::map<std::string, std::pair<std::string, std::int64_t>> unknown;
        const std::string html = FileExists(parts_.htmlFile) ? ReadFileText(parts_.htmlFile) : "";
        const std::pair<const std::string*, bool> texts[] = {
            {&parts_.from, true},        {&parts_.subject, true},   {&parts_.body, false},
            {&parts_.attachment, false}, {&parts_.htmlFile, false}, {&html, false}};
        for (const auto& [text, inHeader] : texts) {
            for (const std::string& tag : TagsIn(*text)) {
                if (const auto position = PositionOf(tag))
                    Use(*position, inHeader);
                else if (!IsSystemTag(tag))
                    ++unknown.try_emplace(ToLower(tag), tag, 0).first->second.second;
            }
        }
        if (const auto address = PositionOf(parts_.addressColumn)) addressPosition_ = *address;
        for (const auto& [key, tag] : unknown)
            unknownTags_.push_back({"The tag [" + tag.first + "] names no column", tag.second, {}});
    }

    std::optional<std::size_t> PositionOf(const std::string& name) const {
        const auto& names = tags_.Names();
        const auto found = std::ranges::find_if(
            names, [&](const std::string& candidate) { return EqualText(candidate, name); });
        if (found == names.end()) return std::nullopt;
        return static_cast<std::size_t>(found - names.begin());
    }

    void Use(std::size_t position, bool inHeader) {
        const auto known = std::ranges::find(columns_, position, &Column::position);
        if (known != columns_.end()) {
            known->inHeader |= inHeader;
            return;
        }
        const std::string& name = tags_.Names()[position];
        columns_.push_back(
            {position,
             inHeader,
             {"The column '" + name + "' is empty", 0, {}},
             {"The column '" + name + "' has a line break in a header field", 0, {}}});
    }

    void CheckGroup(std::size_t first, std::size_t count) {
        const auto group = rows_.recipients->ReadRows(first, count);
        for (std::size_t i = 0; group.Ok() && i < group->size(); ++i) {
            const auto bookmark = rows_.recipients->BookmarkAt(first + i);
            if (bookmark.Failed()) continue;
            row_ = &(*group)[i];
            CheckRow(*bookmark);
        }
    }

    /// The present row's value as a text, until the next call; null for Null.
    const std::string* Text(std::size_t position) {
        const DaoValue& value = (*row_)[position];
        if (value.IsNull()) return nullptr;
        auto text = value.ToText();
        if (text.Failed()) return nullptr;
        text_ = std::move(*text);
        return &text_;
    }

    static void Note(MergeFinding& finding, Bookmark row) {
        ++finding.count;
        finding.rows.push_back(row);
    }

    void CheckRow(Bookmark row) {
        for (Column& column : columns_) {
            const std::string* value = Text(column.position);
            if (!value || Trim(*value).empty())
                Note(column.empty, row);
            else if (column.inHeader && value->find_first_of("\r\n") != std::string::npos)
                Note(column.broken, row);
        }
        CheckAddress(row);
        CheckFile(attachment_, row);
        CheckFile(htmlFile_, row);
    }

    void CheckAddress(Bookmark row) {
        const std::string* value = addressPosition_ ? Text(*addressPosition_) : nullptr;
        if (!value || Trim(*value).empty()) return Note(noAddress_, row);
        const std::vector<std::string> addresses = AddressesOf(*value);
        const bool good =
            !addresses.empty() && std::ranges::all_of(addresses, [](const std::string& address) {
                return IsMailbox(address) && address.find('@') != std::string::npos;
            });
        if (!good) Note(badAddress_, row);
        for (const std::string& address : addresses)
            addresses_.push_back({HashOf(ToLower(address)), row});
    }

    void CheckFile(File& file, Bookmark row) {
        if (file.path.empty()) return;
        std::string path = file.path;
        tags_.Replace(path, [this](std::size_t position) { return Text(position); });
        if (file.last != path) {
            file.lastFound = FileExists(path);
            file.last = std::move(path);
        }
        if (!file.lastFound) Note(file.missing, row);
    }

    /// All but the first row of each address, in the order of the rows.
    void FindRepeatedAddresses() {
        std::ranges::stable_sort(addresses_, {}, &Address::hash);
        for (std::size_t i = 1; i < addresses_.size(); ++i)
            if (addresses_[i].hash == addresses_[i - 1].hash)
                Note(repeatedAddress_, addresses_[i].row);
        auto& rows = repeatedAddress_.rows;
        std::ranges::sort(rows);
        rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
        repeatedAddress_.count = static_cast<std::int64_t>(rows.size());
    }

    std::vector<MergeFinding> Findings() {
        std::vector<MergeFinding> all = std::move(unknownTags_);
        const auto add = [&all](MergeFinding& finding) {
            if (finding.count > 0) all.push_back(std::move(finding));
        };
        for (MergeFinding* finding : {&noAddress_, &badAddress_, &repeatedAddress_})
            add(*finding);
        for (File* file : {&attachment_, &htmlFile_}) {
            file->missing.text = std::string("The ") + file->kind + " is not there";
            add(file->missing);
        }
        for (Column& column : columns_) {
            add(column.empty);
            add(column.broken);
        }
        return all;
    }

    struct Address {
        std::uint64_t hash;
        Bookmark row;
    };

    const MergeParts& parts_;
    const MergeRows& rows_;
    TagList tags_;
    const std::vector<DaoValue>* row_ = nullptr;
    std::string text_;
    std::vector<Column> columns_;
    std::optional<std::size_t> addressPosition_;
    std::vector<Address> addresses_;
    std::vector<MergeFinding> unknownTags_;
    MergeFinding noAddress_{"No e-mail address", 0, {}};
    MergeFinding badAddress_{"Not an e-mail address", 0, {}};
    MergeFinding repeatedAddress_{"The e-mail address stands in an earlier row already", 0, {}};
    File attachment_;
    File htmlFile_;
};

}  // namespace

std::vector<MergeFinding> CheckMerge(const MergeParts& parts, const MergeRows& rows,
                                     const std::function<bool(std::size_t done)>& goOn) {
    return MergeCheck(parts, rows).Run(goOn);
}

}  // namespace mailvane
