#include "merge/check/AddressCheck.h"

#include <algorithm>
#include <string_view>

#include "core/text/Text.h"
#include "platform/net/mime/MailAddress.h"
#include "send/message/MessageAssembly.h"

namespace mailvane {

namespace {

/// FNV-1a; equal addresses are told by it alone: among a million of them two others meet once in
/// thirty million lists.
std::uint64_t HashOf(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    return hash;
}

bool IsFullMailbox(const std::string& address) {
    return IsMailbox(address) && address.find('@') != std::string::npos;
}

}  // namespace

void Note(MergeFinding& finding, Bookmark row) {
    ++finding.count;
    finding.rows.push_back(row);
}

void AddressCheck::Look(const std::string* value, Bookmark row) {
    if (!value || Trim(*value).empty()) return Note(missing_, row);
    if (value->find_first_of("\r\n") != std::string::npos) Note(broken_, row);
    const std::vector<std::string> addresses =
        AddressesOf(personal_ ? NarrowRecipient(*value) : *value);
    if (!IsTaken(*value, addresses)) Note(bad_, row);
    for (const std::string& address : addresses)
        addresses_.push_back({HashOf(ToLower(address)), row});
}

bool AddressCheck::IsTaken(const std::string& value,
                           const std::vector<std::string>& addresses) const {
    MessageRecord record;
    record.To = value;
    return (!personal_ || HasAddress(record)) && !addresses.empty() &&
           std::ranges::all_of(addresses, IsFullMailbox);
}

/// All but the first row of each address, in the order of the rows.
void AddressCheck::FindRepeated() {
    std::ranges::stable_sort(addresses_, {}, &Address::hash);
    for (std::size_t i = 1; i < addresses_.size(); ++i)
        if (addresses_[i].hash == addresses_[i - 1].hash) Note(repeated_, addresses_[i].row);
    auto& rows = repeated_.rows;
    std::ranges::sort(rows);
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    repeated_.count = static_cast<std::int64_t>(rows.size());
}

std::vector<MergeFinding> AddressCheck::Findings() {
    FindRepeated();
    return {std::move(missing_), std::move(bad_), std::move(broken_), std::move(repeated_)};
}

}  // namespace mailvane
