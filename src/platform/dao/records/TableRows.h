#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/DaoValue.h"
#include "platform/dao/file/Statement.h"
#include "platform/dao/records/Recordset.h"

namespace mailvane {

class Connection;

/// Adds many rows to one table with one prepared statement, for imports: what AddNew, Set and
/// Update of a recordset do, without a keyset and without a copy of each value. Made by
/// Database::OpenAppender.
class TableAppender {
public:
    static DaoResult<std::unique_ptr<TableAppender>> Open(std::shared_ptr<Connection> connection,
                                                          const std::string& table,
                                                          const std::vector<std::string>& columns);

    const std::vector<Field>& Fields() const { return fields_; }
    /// The value of a column, by its place in Fields, in the row to come; converts and checks as
    /// Recordset::Set does (3421, 3163).
    DaoError Set(std::size_t index, const DaoValue& value);
    /// The same for a value that stands in a text. The text must live until Append.
    DaoError SetText(std::size_t index, std::string_view text);
    /// Writes the row; columns that were not set are Null. A row that is refused leaves nothing.
    DaoError Append();
    void Clear();  ///< forgets what was set

private:
    TableAppender(std::shared_ptr<Connection> connection, std::vector<Field> fields,
                  Statement statement);
    bool SetQuickly(std::size_t index, std::string_view text);

    std::shared_ptr<Connection> connection_;
    std::vector<Field> fields_;
    std::vector<std::size_t> truths_;  ///< Boolean columns: they are never Null
    Statement statement_;
};

/// Walks the rows of one table forward and once, for exports. Made by Database::OpenScan. Not to be
/// kept while the table's structure changes.
class TableScan {
public:
    static DaoResult<std::unique_ptr<TableScan>> Open(std::shared_ptr<Connection> connection,
                                                      const std::string& table);

    const std::vector<Field>& Fields() const { return fields_; }
    DaoResult<bool> Next();  ///< false behind the last row
    /// Goes to the row of that key instead; false when it has gone.
    DaoResult<bool> Find(Bookmark bookmark);

    // The current row's values as they are stored. Texts live until the next row; a number's is the
    // default conversion's.
    StoredKind KindOf(std::size_t index) const;
    std::string_view TextOf(std::size_t index) const;

private:
    TableScan(std::shared_ptr<Connection> connection, std::vector<Field> fields, std::string find,
              Statement statement);

    std::shared_ptr<Connection> connection_;
    std::vector<Field> fields_;
    std::string find_;  ///< the statement that gives the row of a key; "" where rows have none
    Statement walk_;
    std::optional<Statement> found_;
    const Statement* row_;
    mutable std::vector<std::string> numbers_;
};

}  // namespace mailvane
