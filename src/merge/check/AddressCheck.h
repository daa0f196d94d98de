#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "merge/check/MergeCheck.h"

namespace mailvane {

/// Finds what sending would refuse among the addresses of the recipients, and what stands there
/// twice.
class AddressCheck {
public:
    /// Messages to one recipient each have it in their To line, which sending looks at first.
    explicit AddressCheck(bool personal) : personal_(personal) {}

    /// The value of the next row; null for Null.
    void Look(const std::string* value, Bookmark row);
    /// In the order of their weight. Ends the check.
    std::vector<MergeFinding> Findings();

private:
    struct Address {
        std::uint64_t hash;
        Bookmark row;
    };
    bool IsTaken(const std::string& value, const std::vector<std::string>& addresses) const;
    void FindRepeated();

    bool personal_;
    std::vector<Address> addresses_;
    MergeFinding missing_{"No e-mail address", 0, {}};
    MergeFinding bad_{"Not an e-mail address", 0, {}};
    MergeFinding broken_{"The e-mail address has a line break", 0, {}};
    MergeFinding repeated_{"The e-mail address stands in an earlier row already", 0, {}};
};

/// One more row, or one more time in the message, with the same.
void Note(MergeFinding& finding, Bookmark row);

}  // namespace mailvane
