#include "database/tools/RowCopies.h"

#include <algorithm>
#include <tuple>

#include "core/MessageBoxes.h"
#include "core/Waiting.h"
#include "core/text/Text.h"
#include "database/tools/TableCopies.h"
#include "database/tools/frmDatabaseCopy.h"
#include "database/view/ViewRowLoop.h"

namespace mailvane {

namespace {

/// A text that no row holds: a copy of the rows that have it is an empty table.
constexpr const char* EmptyCopySentinel = "8nfmwl-184cbna348";

class RowCopyRun {
public:
    RowCopyRun(Workbench& wb, frmViewDatabase& view) : wb_(wb), view_(view) {}

    /// The table that took the rows; "" when there is none. `title` is the input box's.
    std::string Run(CopyTarget target, const std::string& title);
    std::size_t Copied() const { return copied_; }

private:
    std::string AskTable(CopyTarget target, const std::string& title);
    bool CopyTo(const std::string& table, bool isNew);
    DaoError MakeEmptyTable(const std::string& table);
    DaoError OpenTarget(const std::string& table);
    bool CopyRows(RowLoop& loop);
    DaoError StoreGroup();
    DaoError CopyGroup();
    DaoError CopyOn();
    void ShowRow();

    Workbench& wb_;
    frmViewDatabase& view_;
    StatementHandler handler_ = CopyErrors(wb_);
    std::shared_ptr<Database> database_;
    std::shared_ptr<Recordset> source_;
    std::unique_ptr<TableAppender> target_;
    std::vector<std::size_t> columns_;  ///< of the source, by place in the target's
    std::string shown_;                 ///< the view's table
    std::vector<Bookmark> rows_;
    std::size_t row_ = 0;     ///< the next one to copy
    std::size_t column_ = 0;  ///< its next column
    std::size_t copied_ = 0;
};

std::string RowCopyRun::Run(CopyTarget target, const std::string& title) {
    rows_ = view_.Grid1.SelBookmarks().All();
    shown_ = view_.Data1.CurrentTable();
    const std::string table = rows_.empty() ? std::string() : AskTable(target, title);
    // The dialog may have brought another table into the view, whose rows are not selected.
    if (rows_.empty() || (!table.empty() && !EqualText(shown_, view_.Data1.CurrentTable()))) {
        Tell(wb_, "Select rows first.");
        return {};
    }
    if (table.empty()) return {};
    const bool done = CopyTo(table, target == CopyTarget::NewTable);
    if (view_.IsLoaded()) view_.cmdRefresh.Press();
    return done ? table : std::string();
}

std::string RowCopyRun::AskTable(CopyTarget target, const std::string& title) {
    if (target == CopyTarget::NewTable) return AskCopyName(wb_, view_, title, "");
    const std::string table = Trim(wb_.forms.Get<frmDatabaseCopy>().Choose());
    if (!table.empty() && !EqualText(table, view_.Data1.CurrentTable())) return table;
    TellInvalidTable(wb_);
    return {};
}

/// False when there is no table, or the user has ended it.
bool RowCopyRun::CopyTo(const std::string& table, bool isNew) {
    const BusyPointer busy(wb_);
    RowLoop loop(wb_, view_, rows_.size(), "Processing records", "copied");
    if (!loop.Began()) return false;
    database_ = view_.Data1.Database();
    source_ = view_.Data1.Recordset();
    if (!database_ || !source_) return false;
    if (isNew && !handler_.GoOn(MakeEmptyTable(table))) return false;
    const DaoError opened = OpenTarget(table);
    return handler_.GoOn(opened) && opened.Ok() && CopyRows(loop);
}

DaoError RowCopyRun::MakeEmptyTable(const std::string& table) {
    const auto& fields = source_->Fields();
    const auto text =
        std::find_if(fields.begin(), fields.end(), [](const Field& one) { return one.IsText(); });
    const std::string column = text == fields.end() ? std::string() : text->name;
    const std::string source = "[" + shown_ + "]";
    const auto made =
        database_->Execute("SELECT " + source + ".* INTO [" + table + "] FROM " + source +
                           " WHERE [" + column + "] = '" + EmptyCopySentinel + "';");
    return made.Failed() ? made.Error() : DaoError();
}

/// Columns that the source has not got stay empty; an auto-number column numbers the rows anew.
DaoError RowCopyRun::OpenTarget(const std::string& table) {
    const auto definition = database_->GetTableDef(table);
    if (definition.Failed()) return MakeDaoError(dao_error::TableNotFound, table);
    const auto& fields = source_->Fields();
    std::vector<std::string> names;
    for (const Field& field : definition->fields) {
        const auto found = std::find_if(fields.begin(), fields.end(), [&](const Field& one) {
            return SameName(one.name, field.name);
        });
        const bool takesValues = (field.attributes & UpdatableFieldAttribute) != 0;
        if (found == fields.end() || field.IsAutoNumber() || !takesValues) continue;
        names.push_back(field.name);
        columns_.push_back(static_cast<std::size_t>(found - fields.begin()));
    }
    auto opened = database_->OpenAppender(table, names);
    if (opened.Failed()) return opened.Error();
    target_ = std::move(*opened);
    return {};
}

/// False when the user has ended it by No, or it was ended for somebody else's sake.
bool RowCopyRun::CopyRows(RowLoop& loop) {
    while (row_ < rows_.size() && source_->IsOpen()) {
        if (!handler_.GoOn(StoreGroup())) break;
        ShowRow();
        if (!loop.GoesOn(row_)) break;
    }
    return !handler_.Ended() && !loop.EndAsked() && source_->IsOpen();
}

/// The rows from one yield to the next go in as one unit: a commit for each of them would cost more
/// than all the rest. Ends early at an error that asks, with the rows before it stored; a disk that
/// takes nothing more undoes the group, which is tried again when the user goes on.
DaoError RowCopyRun::StoreGroup() {
    const std::pair before(row_, copied_);
    DaoError failed;
    const DaoError stored = database_->Transaction([&]() -> DaoError {
        failed = CopyGroup();
        return IsStorageFailure(failed) ? failed : DaoError();
    });
    if (stored.Ok()) return failed;
    std::tie(row_, copied_) = before;
    column_ = 0;
    target_->Clear();
    return stored;
}

DaoError RowCopyRun::CopyGroup() {
    DaoError failed;
    do {
        failed = CopyOn();
    } while (handler_.Passes(failed) && row_ < rows_.size() && !wb_.platform.windows.YieldIsDue());
    return failed;
}

/// Goes on with the row where the last error has stopped it, to its end or the next error.
DaoError RowCopyRun::CopyOn() {
    DaoError failed = source_->SetBookmark(rows_[row_]);
    while (failed.Ok() && column_ < columns_.size()) {
        const std::size_t column = column_++;
        const auto value = source_->Get(columns_[column]);
        const bool gone = value.Failed() && value.Error().number == dao_error::RecordDeleted;
        if (gone) {
            failed = value.Error();
        } else {
            const DaoError set = value.Failed() ? value.Error() : target_->Set(column, *value);
            if (!handler_.Passes(set)) return set;
        }
    }
    column_ = 0;
    ++row_;
    if (failed.Failed()) {
        target_->Clear();
        return failed;
    }
    const DaoError added = target_->Append();
    if (added.Ok()) ++copied_;
    return added;
}

/// The row that was copied last is the grid's current one.
void RowCopyRun::ShowRow() {
    if (row_ == 0 || view_.Data1.Recordset() != source_ || !view_.Grid1.Rows()) return;
    if (const auto place = view_.Grid1.Rows()->RowOf(rows_[row_ - 1]))
        view_.Grid1.SetCurrentRow(*place);
}

}  // namespace

void CopyRowsToTable(Workbench& wb, frmViewDatabase& view, CopyTarget target) {
    RowCopyRun run(wb, view);
    const std::string table = run.Run(target, "Copy selected records");
    if (!table.empty()) Tell(wb, "Records are successfully copied to the '" + table + "' table.");
}

void MoveRowsToTable(Workbench& wb, frmViewDatabase& view, CopyTarget target) {
    RowCopyRun run(wb, view);
    const std::string table = run.Run(target, "Move selected records");
    if (!table.empty())
        Tell(wb, std::to_string(run.Copied()) + " records are successfully moved to the '" + table +
                     "' table.");
}

}  // namespace mailvane
