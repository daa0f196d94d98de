#pragma once

#include <string>
#include <utility>

#include "core/run/LongRun.h"
#include "database/view/frmViewDatabase.h"

namespace mailvane {

/// A loop over rows of the database view: a run that holds the recipients, during which the grid's
/// screen stays as it is.
class RowLoop {
public:
    /// `name` and `result` are of the sentence "Deleting records was ended early: 3 of 10 records
    /// are deleted."
    RowLoop(Workbench& wb, frmViewDatabase& view, std::size_t rows, const std::string& name,
            std::string result)
        : run_(wb, {name, Holds::Recipients}), view_(view), rows_(rows) {
        view_.Grid1.SetRedraw(false);
        if (!run_.Began()) return;
        if (rows > 0) run_.ShowProgress(static_cast<long>(rows), name + "...");
        run_.howFar = [this, result = std::move(result)] {
            return std::to_string(done_) + " of " + std::to_string(rows_) + " records are " +
                   result;
        };
    }
    ~RowLoop() { view_.Grid1.SetRedraw(true); }
    RowLoop(const RowLoop&) = delete;
    RowLoop& operator=(const RowLoop&) = delete;

    bool Began() const { return run_.Began(); }
    bool EndAsked() const { return run_.EndAsked(); }
    /// Shows how many rows are done, and lets the interface live when that is due. False when the
    /// loop is to end.
    bool GoesOn(std::size_t done) {
        done_ = done;
        return run_.Began() && run_.GoesOn(static_cast<long>(done));
    }
    /// What the loop did is undone when it ends early.
    void KeepNothing(std::string outcome) {
        run_.howFar = [outcome = std::move(outcome)] { return outcome; };
    }

private:
    LongRun run_;
    frmViewDatabase& view_;
    std::size_t rows_;
    std::size_t done_ = 0;
};

}  // namespace mailvane
