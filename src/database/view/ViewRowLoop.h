#pragma once

#include <algorithm>
#include <string>

#include "core/Waiting.h"
#include "core/run/Progress.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

/// A loop over rows of the database view: the progress display is on, the grid's screen stays as it
/// is, and the view takes no other command meanwhile.
class RowLoop {
public:
    RowLoop(Workbench& wb, bool& running, frmViewDatabase& view, std::size_t rows,
            const std::string& text)
        : wb_(wb), running_(running), view_(view), rows_(static_cast<long>(rows)) {
        running_ = true;
        wb_.state.CancelRequested = false;
        view_.cmbTable.SetEnabled(false);
        view_.Grid1.SetRedraw(false);
        if (rows_ > 0) UpdateProgress(wb_, rows_, 0, text, "", rows_ >= ManyRows);
    }
    ~RowLoop() {
        if (rows_ > 0) UpdateProgress(wb_, 0, rows_);
        wb_.state.CancelRequested = false;
        running_ = false;
        view_.cmbTable.SetEnabled(true);
        view_.Grid1.SetRedraw(true);
    }
    RowLoop(const RowLoop&) = delete;
    RowLoop& operator=(const RowLoop&) = delete;

    /// Shows how many rows are done and yields, when a yield is due. False when the user has
    /// cancelled, or the view has been closed.
    bool GoesOn(std::size_t done) const {
        if (wb_.platform.windows.YieldIsDue()) {
            UpdateProgress(wb_, 0, std::min(static_cast<long>(done), rows_ - 1));
            YieldBriefly(wb_);
        }
        return !wb_.state.CancelRequested && view_.IsLoaded();
    }

private:
    static constexpr long ManyRows = 200;  ///< fewer are done before a window could be read

    Workbench& wb_;
    bool& running_;
    frmViewDatabase& view_;
    long rows_;
};

}  // namespace mailvane
