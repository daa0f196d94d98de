#include "platform/tables/text/DelimitedWriter.h"

#include <algorithm>

namespace mailvane {

DelimitedWriter::DelimitedWriter(const std::string& path, const DelimitedFormat& format)
    : file_(path), delimiter_(format.delimiter), quote_(format.quote == '\0' ? '"' : format.quote) {
    for (const char sign : {'\r', '\n', delimiter_, quote_})
        special_[static_cast<unsigned char>(sign)] = true;
}

void DelimitedWriter::Append(std::string_view text) {
    const bool plain = !text.empty() && std::none_of(text.begin(), text.end(), [this](char sign) {
        return special_[static_cast<unsigned char>(sign)];
    });
    if (plain) {
        line_.append(text);
        return;
    }
    line_ += quote_;
    for (const char sign : text)
        line_.append(sign == quote_ ? 2 : 1, sign);
    line_ += quote_;
}

bool DelimitedWriter::WriteColumns(const std::vector<std::string>& names) {
    std::vector<Cell> row;
    for (const std::string& name : names)
        row.push_back({ValueKind::Text, name});
    return WriteRow(row);
}

bool DelimitedWriter::WriteRow(const std::vector<Cell>& row) {
    line_.clear();
    for (std::size_t i = 0; i < row.size(); ++i) {
        if (i > 0) line_ += delimiter_;
        if (row[i].kind != ValueKind::Null) Append(row[i].text);
    }
    line_ += "\r\n";
    return file_.Write(line_);
}

}  // namespace mailvane
