#pragma once

#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace mailvane {

/// One field of a delimited text; a quoted one may be empty on purpose.
struct DelimitedField {
    std::string text;
    bool quoted = false;
};

/// Reads delimited text record by record (RFC 4180 section 2, with the line ends of any system):
/// fields between delimiters, fields in double quotes may hold delimiters, line ends and doubled
/// quotes. A byte order mark of UTF-8 is passed over. Holds one record in memory at a time.
class DelimitedReader {
public:
    explicit DelimitedReader(std::istream& input, char delimiter = ',');

    /// The next record into `record`; false at the end of the text. Empty lines are passed over.
    bool Next(std::vector<DelimitedField>& record);
    std::size_t Line() const { return recordLine_; }  ///< where the last record began, from 1
    std::size_t BytesRead() const { return bytesRead_; }
    /// The text ended inside quotes: its last record may be cut short.
    bool EndedInsideQuotes() const { return endedInsideQuotes_; }

private:
    int Take();
    int Peek();
    void ReadQuoted(DelimitedField& field);
    void ReadPlain(DelimitedField& field);
    bool AtFieldEnd();
    std::istream& input_;
    char delimiter_;
    std::size_t line_ = 1;
    std::size_t recordLine_ = 1;
    std::size_t bytesRead_ = 0;
    bool endedInsideQuotes_ = false;
};

}  // namespace mailvane
