#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <numeric>

#include "platform/qt/ControlBinding.h"
#include "platform/qt/GridModel.h"
#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr double TwipsPerPixel = 15;

/// Rows in one piece, both ends included.
struct RowRange {
    int first;
    int last;
};

std::vector<RowRange> RangesOf(const QItemSelection& selection) {
    std::vector<RowRange> ranges;
    for (const QItemSelectionRange& range : selection)
        if (range.left() == 0) ranges.push_back({range.top(), range.bottom()});
    std::sort(ranges.begin(), ranges.end(),
              [](const RowRange& a, const RowRange& b) { return a.first < b.first; });
    return ranges;
}

class GridBinding final : public ControlBinding {
public:
    GridBinding(Grid& control, QTableView& view)
        : ControlBinding(control, view),
          grid_(control),
          view_(view),
          model_(*new GridModel(control, &view)) {
        SetUpView();
        ListenToHead();
        ListenToCells();
        rowChanged_ = control.rowChanged.Observe([this](std::size_t row) {
            if (grid_.Redraw()) {
                model_.RowChanged(row);
            } else {
                rowsWait_ = true;
            }
        });
        later_.setSingleShot(true);
        later_.setInterval(0);
        connect(&later_, &QTimer::timeout, this,
                [this] { Guarded([this] { ShowSelectionNow(); }); });
    }

    ~GridBinding() override { model_.Detach(); }

private:
    void SetUpView() {
        view_.setModel(&model_);
        view_.setSelectionBehavior(QAbstractItemView::SelectRows);
        view_.setSelectionMode(QAbstractItemView::ExtendedSelection);
        view_.setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::AnyKeyPressed |
                              QAbstractItemView::SelectedClicked);
        view_.setSortingEnabled(false);
        view_.setWordWrap(false);
        view_.setTabKeyNavigation(false);
        view_.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        // One height for all: a million rows are placed without looking at any.
        QHeaderView& rows = *view_.verticalHeader();
        rows.setSectionResizeMode(QHeaderView::Fixed);
        rows.setDefaultSectionSize(view_.fontMetrics().height() + 6);
        rows.hide();
        QHeaderView& head = *view_.horizontalHeader();
        head.setSectionsMovable(true);
        head.setSectionsClickable(true);
        head.setHighlightSections(false);
        head.setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
        view_.installEventFilter(this);
        view_.viewport()->installEventFilter(this);
    }

    void ListenToHead() {
        QHeaderView* head = view_.horizontalHeader();
        connect(head, &QHeaderView::sectionClicked, this, [this](int column) {
            FromUser(Property::Columns,
                     [&] { RunHandler(grid_.onHeadClick, static_cast<std::size_t>(column)); });
        });
        connect(head, &QHeaderView::sectionResized, this, [this](int column, int, int width) {
            if (width == 0) return;  // hidden
            FromHead([&] {
                grid_.SetColumnWidth(static_cast<std::size_t>(column), width * TwipsPerPixel);
            });
        });
        connect(head, &QHeaderView::sectionMoved, this, [this, head] {
            FromHead([&] {
                for (int column = 0; column < model_.columnCount(); ++column)
                    grid_.SetColumnPosition(static_cast<std::size_t>(column),
                                            head->visualIndex(column));
            });
        });
    }

    void ListenToCells() {
        QItemSelectionModel* selection = view_.selectionModel();
        connect(selection, &QItemSelectionModel::currentChanged, this,
                [this](const QModelIndex& current) { ReadCurrent(current); });
        connect(selection, &QItemSelectionModel::selectionChanged, this,
                [this](const QItemSelection& added, const QItemSelection& removed) {
                    ReadSelection(added, removed);
                });
        connect(&view_, &QTableView::doubleClicked, this,
                [this] { RunHandler(grid_.onDoubleClick); });
    }

    /// The user's drag in the head is already on the screen: nothing is shown back.
    void FromHead(const std::function<void()>& act) {
        if (Showing()) return;
        dragging_ = true;
        act();
        dragging_ = false;
    }

    void ReadCurrent(const QModelIndex& current) {
        if (!current.isValid()) return;
        FromUser(Property::CurrentCell, [&] {
            const QPointer<ControlBinding> self(this);
            const auto row = static_cast<std::size_t>(current.row());
            grid_.SetCurrentColumn(static_cast<std::size_t>(current.column()));
            if (self) grid_.SetCurrentRow(row);
        });
    }

    void ReadSelection(const QItemSelection& added, const QItemSelection& removed) {
        if (Showing() || !grid_.Rows() || later_.isActive()) return;
        std::vector<std::int64_t> bookmarks;
        const bool onlyMore = removed.isEmpty();
        if (onlyMore) bookmarks = grid_.SelBookmarks().All();
        const auto ranges = RangesOf(onlyMore ? added : view_.selectionModel()->selection());
        const auto count = static_cast<int>(grid_.RowCount());
        for (const RowRange& range : ranges)
            for (int row = range.first; row <= range.last && row < count; ++row)
                bookmarks.push_back(grid_.Rows()->BookmarkAt(static_cast<std::size_t>(row)));
        reading_ = true;
        const QPointer<ControlBinding> self(this);
        const std::size_t selected = bookmarks.size();
        grid_.SetSelected(std::move(bookmarks));
        if (!self) return;
        reading_ = false;
        if (grid_.SelBookmarks().Count() != selected) ShowSelectionLater();
    }

    void Show(Property property) override {
        if (property == Property::Redraw) {
            view_.setUpdatesEnabled(grid_.Redraw());
            if (grid_.Redraw() && Started()) ShowWaiting();
            return;
        }
        if (!grid_.Redraw() && Started()) {
            Remember(property);
            return;
        }
        if (property == Property::Columns && !dragging_) ShowColumns();
        if (property == Property::Rows) ShowRows();
        if (property == Property::CurrentCell) ShowCurrent();
        if (property == Property::RowSelection && !reading_) ShowSelection();
    }

    void Remember(Property property) {
        columnsWait_ |= property == Property::Columns;
        rowsWait_ |= property == Property::Rows;
    }

    void ShowWaiting() {
        if (std::exchange(columnsWait_, false)) ShowColumns();
        if (std::exchange(rowsWait_, false)) ShowRows();
        ShowCurrent();
        ShowSelectionNow();
    }

    void ShowColumns() {
        const auto& columns = grid_.Columns();
        QHeaderView& head = *view_.horizontalHeader();
        if (CaptionsDiffer()) {
            model_.ColumnsChanged();
            captions_.clear();
            for (const GridColumn& column : columns)
                captions_.push_back(column.caption);
            ShowCurrent();
            ShowSelectionLater();
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto section = static_cast<int>(i);
            const int width = std::max(1, static_cast<int>(columns[i].width / TwipsPerPixel + 0.5));
            view_.setColumnHidden(section, !columns[i].visible);
            if (columns[i].visible && head.sectionSize(section) != width)
                head.resizeSection(section, width);
        }
        ShowPositions();
        ShowSortMark();
    }

    bool CaptionsDiffer() const {
        const auto& columns = grid_.Columns();
        return !std::equal(columns.begin(), columns.end(), captions_.begin(), captions_.end(),
                           [](const GridColumn& column, const std::string& caption) {
                               return column.caption == caption;
                           });
    }

    void ShowPositions() {
        const auto& columns = grid_.Columns();
        std::vector<int> order(columns.size());
        std::iota(order.begin(), order.end(), 0);
        std::stable_sort(order.begin(), order.end(), [&](int a, int b) {
            return columns[static_cast<std::size_t>(a)].position <
                   columns[static_cast<std::size_t>(b)].position;
        });
        QHeaderView& head = *view_.horizontalHeader();
        for (std::size_t place = 0; place < order.size(); ++place)
            head.moveSection(head.visualIndex(order[place]), static_cast<int>(place));
    }

    /// The mark in the head names the direction that a click gives next.
    void ShowSortMark() {
        const auto& columns = grid_.Columns();
        const auto sorted = std::find_if(columns.begin(), columns.end(),
                                         [](const GridColumn& c) { return !c.headStyle.empty(); });
        QHeaderView& head = *view_.horizontalHeader();
        head.setSortIndicatorShown(sorted != columns.end());
        if (sorted == columns.end()) return;
        head.setSortIndicator(
            static_cast<int>(sorted - columns.begin()),
            sorted->headStyle == "DESC" ? Qt::AscendingOrder : Qt::DescendingOrder);
    }

    void ShowRows() {
        model_.RowsChanged();
        ShowCurrent();
        ShowSelectionLater();
    }

    void ShowCurrent() {
        QItemSelectionModel& selection = *view_.selectionModel();
        if (!grid_.CurrentRow()) {
            if (selection.currentIndex().isValid()) selection.clearCurrentIndex();
            return;
        }
        const QModelIndex index = model_.index(static_cast<int>(*grid_.CurrentRow()),
                                               static_cast<int>(grid_.CurrentColumn()));
        const QModelIndex shown =
            index.isValid() ? index : model_.index(static_cast<int>(*grid_.CurrentRow()), 0);
        if (shown == selection.currentIndex()) return;
        selection.setCurrentIndex(shown, QItemSelectionModel::NoUpdate);
        view_.scrollTo(shown);
    }

    void ShowSelection() {
        if (Started()) {
            ShowSelectionLater();
        } else {
            ShowSelectionNow();
        }
    }

    /// A selection made row by row is shown once.
    void ShowSelectionLater() {
        if (!later_.isActive()) later_.start();
    }

    void ShowSelectionNow() {
        later_.stop();
        view_.selectionModel()->select(SelectedRows(), QItemSelectionModel::ClearAndSelect);
    }

    QItemSelection SelectedRows() const {
        QItemSelection selection;
        const int lastColumn = model_.columnCount() - 1;
        const SelectedBookmarks& selected = grid_.SelBookmarks();
        if (!grid_.Rows() || lastColumn < 0 || selected.Count() == 0) return selection;
        if (selected.Count() == grid_.RowCount()) {
            selection.select(model_.index(0, 0), model_.index(model_.rowCount() - 1, lastColumn));
            return selection;
        }
        std::vector<int> rows;
        for (const std::int64_t bookmark : selected.All())
            if (const auto row = grid_.Rows()->RowOf(bookmark))
                if (*row < static_cast<std::size_t>(model_.rowCount()))
                    rows.push_back(static_cast<int>(*row));
        std::sort(rows.begin(), rows.end());
        for (std::size_t i = 0; i < rows.size();) {
            std::size_t end = i + 1;
            while (end < rows.size() && rows[end] == rows[end - 1] + 1)
                ++end;
            selection.select(model_.index(rows[i], 0), model_.index(rows[end - 1], lastColumn));
            i = end;
        }
        return selection;
    }

    bool Filter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ContextMenu) return ContextMenu(*event);
        if (event->type() != QEvent::KeyPress || watched != &view_) return false;
        const int key = static_cast<QKeyEvent*>(event)->key();
        const bool enter = key == Qt::Key_Return || key == Qt::Key_Enter;
        if (!enter || !grid_.onDoubleClick || !grid_.CurrentRow()) return false;
        RunHandler(grid_.onDoubleClick);
        return true;
    }

    /// The press of the button has already selected the row under the pointer.
    bool ContextMenu(QEvent& event) {
        if (!grid_.onContextMenu) return false;
        event.accept();
        RunHandler(grid_.onContextMenu);
        return true;
    }

    Grid& grid_;
    QTableView& view_;
    GridModel& model_;  ///< the view's own: both may be at work when the binding goes
    std::vector<std::string> captions_;
    QTimer later_;
    Subscription rowChanged_;
    bool dragging_ = false;
    bool reading_ = false;
    bool columnsWait_ = false;
    bool rowsWait_ = false;
};

}  // namespace

BindingPointer BindGrid(Grid& control, QWidget& widget) {
    return std::make_unique<GridBinding>(control, *qobject_cast<QTableView*>(&widget));
}

}  // namespace mailvane
