#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace mailvane {

/// What a value is in its file. The text of a number is the number with all its digits and a point,
/// of a date "YYYY-MM-DD HH:MM:SS", of a truth "True" or "False".
enum class ValueKind : std::uint8_t { Null, Text, Number, Date, Truth, Bytes };

/// One value of a row. The text is UTF-8 and lives until the next row is read.
struct Cell {
    ValueKind kind = ValueKind::Null;
    std::string_view text;

    friend bool operator==(const Cell&, const Cell&) = default;
};

/// The declared type of a column; Unknown where the source has none, or one that only the values
/// can tell how to keep.
enum class SourceType : std::uint8_t {
    Unknown,
    Boolean,
    Byte,
    Integer,
    Long,
    Wide,  ///< whole numbers of 64 bits
    Currency,
    Single,
    Double,
    Date,
    Text,
    Memo,
    Bytes
};

struct SourceColumn {
    std::string name;
    SourceType type = SourceType::Unknown;
    bool autoNumber = false;
};

/// The rows of one table, one after another; only one is in memory.
class SourceRows {
public:
    virtual ~SourceRows() = default;

    virtual const std::vector<SourceColumn>& Columns() const = 0;
    /// The next row into `row`; false at the end, or when `Error` says what stands in the way. A
    /// row of a text may have fewer or more cells than there are columns.
    virtual bool Next(std::vector<Cell>& row) = 0;
    virtual const std::string& Error() const = 0;

    /// Why the row just read is not to be trusted; "" when it is whole.
    virtual std::string Fault() const { return {}; }
    /// Where that row stands: line of a text, row of a sheet, number of a record; from 1.
    virtual std::int64_t Place() const = 0;
    /// How far the reading has come, of `Total`; units are the source's own.
    virtual std::int64_t Done() const = 0;
    virtual std::int64_t Total() const = 0;
};

/// A file with tables in it. Never writes to it.
class TableSource {
public:
    virtual ~TableSource() = default;

    /// Names of the tables or sheets, in the file's order.
    virtual const std::vector<std::string>& Tables() const = 0;
    /// False when columns have names only if the first row gives them.
    virtual bool NamesColumns() const = 0;
    /// The rows of a table from its beginning; null, with the reason in `error`, when it cannot be
    /// read. `header`: the first row names the columns, where the source does not. May be called
    /// again for another pass.
    virtual std::unique_ptr<SourceRows> Open(std::size_t table, bool header,
                                             std::string& error) = 0;
};

/// Takes the rows of one table.
class TableWriter {
public:
    virtual ~TableWriter() = default;

    // False when it cannot go on, with the reason in `Error`. Nothing stands under the file's name
    // until Finish has succeeded.
    virtual bool WriteColumns(const std::vector<std::string>& names) = 0;
    virtual bool WriteRow(const std::vector<Cell>& row) = 0;
    virtual bool Finish() = 0;
    virtual const std::string& Error() const = 0;
};

}  // namespace mailvane
