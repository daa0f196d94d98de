#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/tables/TableSource.h"
#include "platform/tables/text/CharacterSet.h"

namespace mailvane {

/// How a delimited text is written. Quote '\0': none, every sign stands for itself.
struct DelimitedFormat {
    char delimiter = ',';
    char quote = '"';
    CharacterSet set = CharacterSet::Utf8;

    friend bool operator==(const DelimitedFormat&, const DelimitedFormat&) = default;
};

/// Reads delimited text record by record (RFC 4180 section 2, with the line ends of any system):
/// fields between delimiters, fields in quotes may hold delimiters, line ends and doubled quotes.
/// An empty field is Null unless it stands in quotes. Holds one block or one record in memory.
class DelimitedReader {
public:
    DelimitedReader(const std::string& path, const DelimitedFormat& format,
                    std::size_t blockSize = DecodedFile::UsualBlock);

    /// The next record into `record`, as texts that live until the next call; false at the end, or
    /// with `Error` set. Empty lines are passed over.
    bool Next(std::vector<Cell>& record);
    const std::string& Error() const { return error_; }
    std::int64_t Line() const { return recordLine_; }  ///< where the last record began, from 1
    /// False when the last record holds bytes that are no UTF-8 in a text that should be.
    bool IsValid() const { return valid_; }
    std::int64_t BytesRead() const { return file_.BytesRead(); }
    std::int64_t Size() const { return file_.Size(); }

private:
    enum class Outcome { Record, NeedMore };
    struct Field {
        std::size_t begin = 0;
        std::size_t end = 0;
        bool quoted = false;
        bool plain = true;  ///< what stands between begin and end is the value
    };

    bool Fill();
    bool SkipLineEnds();
    Outcome ScanRecord();
    bool ScanField(std::size_t& at, Field& field);
    bool ScanQuoted(std::size_t& at, Field& field);
    bool ScanPlain(std::size_t& at) const;
    std::size_t PassLineEnd(std::size_t at);
    std::string_view Unquote(const Field& field);
    std::int64_t LinesIn(std::size_t begin, std::size_t end) const;

    DecodedFile file_;
    std::string path_;
    DelimitedFormat format_;
    bool stops_[256] = {};  ///< bytes that end a field outside quotes
    std::string text_;      ///< what has been read and not yet passed
    std::size_t at_ = 0;    ///< where the next record begins in it
    bool ended_ = false;    ///< all of the file is in text_
    bool insideQuotes_ = false;
    bool valid_ = true;
    std::int64_t line_ = 1;
    std::int64_t recordLine_ = 1;
    std::int64_t quotedLines_ = 0;
    std::vector<Field> fields_;
    std::string error_;
};

}  // namespace mailvane
