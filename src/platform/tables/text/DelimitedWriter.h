#pragma once

#include "platform/tables/OutputFile.h"
#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

/// Writes delimited text in UTF-8, lines ended by CR LF. A field is quoted where it must be, and
/// when it is an empty text: Null is an empty field without quotes.
class DelimitedWriter final : public TableWriter {
public:
    /// The format's character set does not count. Quote '\0' is taken for double quotes.
    DelimitedWriter(const std::string& path, const DelimitedFormat& format);

    bool WriteColumns(const std::vector<std::string>& names) override;
    bool WriteRow(const std::vector<Cell>& row) override;
    bool Finish() override { return file_.Finish(); }
    const std::string& Error() const override { return file_.Error(); }

private:
    void Append(std::string_view text);
    OutputFile file_;
    char delimiter_;
    char quote_;
    bool special_[256] = {};  ///< bytes for which a field needs quotes
    std::string line_;
};

}  // namespace mailvane
