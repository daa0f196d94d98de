#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/dao/DaoError.h"
#include "platform/dao/DaoValue.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

/// Names a row of a recordset; valid for recordsets over the same table.
using Bookmark = std::int64_t;

enum class RecordsetType { Table = 1, Dynaset = 2 };

/// A walk over the rows of a table or query, and the way to change them one at a time. A dynaset
/// keeps the keys of its rows as they were when it was opened (its keyset) and reads values when
/// they are asked for; rows that it adds itself join its end. Opened on the first row, if any.
class Recordset {
public:
    virtual ~Recordset() = default;

    virtual const std::string& Name() const = 0;  ///< the source it was opened with
    virtual bool IsOpen() const = 0;
    virtual void Close() = 0;

    // Position. A move past either end leaves EndOfFile or BeginOfFile set and succeeds; a further
    // move in that direction, and reading there, fail with 3021.
    virtual DaoError MoveFirst() = 0;
    virtual DaoError MoveLast() = 0;
    virtual DaoError MoveNext() = 0;
    virtual DaoError MovePrevious() = 0;
    virtual bool BeginOfFile() const = 0;
    virtual bool EndOfFile() const = 0;
    virtual std::int64_t RecordCount() const = 0;  ///< rows, exact at once

    virtual DaoResult<Bookmark> GetBookmark() const = 0;
    virtual DaoError SetBookmark(Bookmark bookmark) = 0;  ///< 3021 for a row that it does not hold

    // The rows by position, for grids: none of these moves the current row.
    virtual DaoResult<Bookmark> BookmarkAt(std::size_t position) const = 0;
    virtual DaoResult<std::size_t> PositionOf(Bookmark bookmark) const = 0;
    /// Values of up to `count` rows from `first`; a row that has gone meanwhile is all Null.
    virtual DaoResult<std::vector<std::vector<DaoValue>>> ReadRows(std::size_t first,
                                                                   std::size_t count) const = 0;

    virtual const std::vector<Field>& Fields() const = 0;
    virtual DaoResult<DaoValue> Get(const std::string& field) const = 0;  ///< case ignored; 3265
    virtual DaoResult<DaoValue> Get(std::size_t index) const = 0;

    // Changing a row: AddNew or Edit, Set for each value, Update. Set converts to the column's type
    // (3421 when it cannot) and checks the size (3163).
    virtual DaoError AddNew() = 0;
    virtual DaoError Edit() = 0;
    virtual DaoError Set(const std::string& field, const DaoValue& value) = 0;
    virtual DaoError Set(std::size_t index, const DaoValue& value) = 0;
    virtual DaoError Update() = 0;
    virtual void CancelUpdate() = 0;
    /// Removes the current row; the position stays on its empty place until the next move.
    virtual DaoError Delete() = 0;
    /// Key of the row that the last Update wrote.
    virtual DaoResult<Bookmark> LastModified() const = 0;

    // Searching, by a condition of the dialect without "WHERE". No match leaves the position.
    virtual DaoError FindFirst(const std::string& condition) = 0;
    virtual DaoError FindNext(const std::string& condition) = 0;
    virtual bool NoMatch() const = 0;

    /// Takes effect in the recordset that OpenFiltered gives, not in this one.
    virtual void SetFilter(const std::string& condition) = 0;
    virtual DaoResult<std::shared_ptr<Recordset>> OpenFiltered() = 0;
    virtual DaoError Requery() = 0;
};

}  // namespace mailvane
