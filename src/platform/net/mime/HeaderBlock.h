#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// Header fields of a message or of a part of one, each with its continuation lines.
class HeaderBlock {
public:
    HeaderBlock() = default;
    /// Line ends become CR LF, NUL and empty lines are left out, so that nothing ends the block
    /// early.
    explicit HeaderBlock(std::string_view text);

    /// Letter case of names is ignored.
    bool Has(std::string_view name) const;
    /// The value of the first field of that name, unfolded; "" when there is none.
    std::string Value(std::string_view name) const;
    /// Takes fields of that name out that say nothing.
    void RemoveEmpty(std::string_view name);
    /// Takes the place of the first field of that name, or stands at the end.
    void Set(std::string_view name, std::string_view value);
    /// Stands directly behind the first field `other`; fields of that name elsewhere go.
    void SetBehind(std::string_view other, std::string_view name, std::string_view value);

    /// Text outside ASCII becomes encoded words, and lines over the limit of mail are folded; all
    /// other fields stay as they are. `utf8`: addresses outside ASCII may stand in a header.
    void EncodeFields(bool utf8);
    void AppendTo(std::string& out) const;

private:
    std::size_t Find(std::string_view name) const;

    std::vector<std::string> fields_;  // without the last line end
};

}  // namespace mailvane
