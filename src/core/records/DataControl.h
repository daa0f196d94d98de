#pragma once

#include <memory>
#include <string>

#include "core/Workbench.h"
#include "core/records/RecordsetRows.h"

namespace mailvane {

/// Binds a database file and a record source to a form and its grid: the table or query that a
/// view shows, and the current row in it.
class DataControl {
public:
    explicit DataControl(Workbench& wb) : wb_(wb) {}

    std::string DatabaseName;  ///< path; takes effect at the next Refresh
    /// A table name, or "SELECT * FROM [table] ORDER BY [column] ASC" or DESC.
    std::string RecordSource;

    /// Opens the file when it is not open, or another one is, and the record source anew. The
    /// current row and, as long as the table and its columns are the same, the grid's columns stay.
    /// On failure there is no recordset.
    DaoError Refresh();
    void Close();  ///< the database and its recordset; DatabaseName and RecordSource stay

    /// Null when closed. Shared: a run may keep them over a refresh.
    const std::shared_ptr<mailvane::Database>& Database() const { return database_; }
    const std::shared_ptr<mailvane::Recordset>& Recordset() const { return recordset_; }
    /// The table behind the record source.
    std::string CurrentTable() const;

    /// Shows the recordset in a grid: columns from its fields, the current row kept in line both
    /// ways. The grid must live as long as this control or the next call.
    void Bind(Grid& grid);

    Event<> aboutToClose;
    Event<> refreshed;

private:
    void GoTo(Bookmark bookmark);
    void ShowInGrid();
    void ShowColumns(const RecordsetRows& rows);
    std::string TableShown() const;
    Workbench& wb_;
    std::shared_ptr<mailvane::Database> database_;
    std::shared_ptr<mailvane::Recordset> recordset_;
    std::string shownTable_;  ///< file and table that the grid's columns are of
    Grid* grid_ = nullptr;
    Subscription gridChanges_;
};

/// The user tables of a database into a list, in the database's order.
void FillWithUserTables(const Database& database, ItemsControl& list);

}  // namespace mailvane
