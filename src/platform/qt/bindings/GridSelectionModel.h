#pragma once

#include <QItemSelectionModel>

namespace mailvane {

/// Tells a selection that replaces the one before from one that only adds or takes away: what the
/// screen shows of a large selection is not all of it.
class GridSelectionModel final : public QItemSelectionModel {
public:
    using QItemSelectionModel::QItemSelectionModel;
    using QItemSelectionModel::select;

    void select(const QItemSelection& selection, SelectionFlags command) override {
        const bool before = std::exchange(replacing_, command.testFlag(Clear));
        QItemSelectionModel::select(selection, command);
        replacing_ = before;
    }
    /// While a change is told: nothing of the selection before it stays.
    bool Replacing() const { return replacing_; }

private:
    bool replacing_ = false;
};

}  // namespace mailvane
