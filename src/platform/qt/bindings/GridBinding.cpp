#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScrollBar>
#include <QStyle>
#include <QTableView>
#include <QTimer>
#include <algorithm>
#include <numeric>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"
#include "platform/qt/bindings/GridDelegate.h"
#include "platform/qt/bindings/GridModel.h"
#include "platform/qt/bindings/GridSelectionModel.h"

namespace mailvane {

namespace {

constexpr double TwipsPerPixel = 15;
/// Of a larger selection only the rows about the screen are shown as selected: a widget is slow
/// with many pieces.
constexpr std::size_t MostSelectedShown = 5000;
constexpr int RowsAboutTheScreen = 100;

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

std::size_t RowsIn(const QItemSelection& selection) {
    std::size_t rows = 0;
    for (const RowRange& range : RangesOf(selection))
        rows += static_cast<std::size_t>(range.last - range.first + 1);
    return rows;
}

class GridBinding final : public ControlBinding {
public:
    GridBinding(Grid& control, QTableView& view)
        : ControlBinding(control, view),
          grid_(control),
          view_(view),
          model_(*new GridModel(control, &view)),
          selection_(*new GridSelectionModel(&model_, &view)) {
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
        copy_ = control.clipboardCopy.Observe([this] { Copy(); });
        paste_ = control.clipboardPaste.Observe([this] { Paste(); });
        connect(&later_, &QTimer::timeout, this,
                [this] { Guarded([this] { ShowSelectionNow(); }); });
    }

    ~GridBinding() override { model_.Detach(); }

private:
    void SetUpView() {
        view_.setModel(&model_);
        view_.setSelectionModel(&selection_);
        view_.setItemDelegate(new GridDelegate(grid_, view_));
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
        connect(view_.verticalScrollBar(), &QScrollBar::valueChanged, this, [this] {
            if (ShowsPartOfSelection()) ShowSelectionLater();
        });
        connect(&selection_, &QItemSelectionModel::currentChanged, this,
                [this](const QModelIndex& current) { ReadCurrent(current); });
        connect(&selection_, &QItemSelectionModel::selectionChanged, this,
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
        reading_ = true;
        const QPointer<ControlBinding> self(this);
        const QItemSelection whole = selection_.selection();
        if (selection_.Replacing()) {
            grid_.SetSelected(BookmarksOf(whole));
        } else {
            const auto gone = BookmarksOf(removed);
            if (!gone.empty()) grid_.RemoveSelected(gone);
            auto bookmarks = self ? grid_.SelBookmarks().All() : std::vector<std::int64_t>();
            const auto more = self ? BookmarksOf(added) : std::vector<std::int64_t>();
            bookmarks.insert(bookmarks.end(), more.begin(), more.end());
            if (!more.empty()) grid_.SetSelected(std::move(bookmarks));
        }
        if (!self) return;
        reading_ = false;
        // A handler may have selected something else.
        if (!ShowsPartOfSelection() && RowsIn(whole) != grid_.SelBookmarks().Count())
            ShowSelectionLater();
    }

    std::vector<std::int64_t> BookmarksOf(const QItemSelection& selection) const {
        std::vector<std::int64_t> bookmarks;
        const auto count = static_cast<int>(grid_.RowCount());
        for (const RowRange& range : RangesOf(selection))
            for (int row = range.first; row <= range.last && row < count; ++row)
                bookmarks.push_back(grid_.Rows()->BookmarkAt(static_cast<std::size_t>(row)));
        return bookmarks;
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
        if (!grid_.CurrentRow()) {
            if (selection_.currentIndex().isValid()) selection_.clearCurrentIndex();
            return;
        }
        const QModelIndex index = model_.index(static_cast<int>(*grid_.CurrentRow()),
                                               static_cast<int>(grid_.CurrentColumn()));
        const QModelIndex shown =
            index.isValid() ? index : model_.index(static_cast<int>(*grid_.CurrentRow()), 0);
        if (shown == selection_.currentIndex()) return;
        selection_.setCurrentIndex(shown, QItemSelectionModel::NoUpdate);
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
        selection_.select(SelectedRows(), QItemSelectionModel::ClearAndSelect);
    }

    bool ShowsPartOfSelection() const {
        const std::size_t count = grid_.SelBookmarks().Count();
        return count > MostSelectedShown && count != grid_.RowCount();
    }

    QItemSelection SelectedRows() const {
        QItemSelection selection;
        const int lastColumn = model_.columnCount() - 1;
        if (!grid_.Rows() || lastColumn < 0 || grid_.SelBookmarks().Count() == 0) return selection;
        if (grid_.SelBookmarks().Count() == grid_.RowCount()) {
            selection.select(model_.index(0, 0), model_.index(model_.rowCount() - 1, lastColumn));
            return selection;
        }
        const std::vector<int> rows = SelectedRowNumbers();
        for (std::size_t i = 0; i < rows.size();) {
            std::size_t end = i + 1;
            while (end < rows.size() && rows[end] == rows[end - 1] + 1)
                ++end;
            selection.select(model_.index(rows[i], 0), model_.index(rows[end - 1], lastColumn));
            i = end;
        }
        return selection;
    }

    /// Ascending.
    std::vector<int> SelectedRowNumbers() const {
        std::vector<int> rows;
        const SelectedBookmarks& selected = grid_.SelBookmarks();
        if (ShowsPartOfSelection()) {
            const int top = std::max(0, view_.rowAt(0)) - RowsAboutTheScreen;
            const int shown =
                view_.viewport()->height() / view_.verticalHeader()->defaultSectionSize();
            const int end = std::min(top + shown + 2 * RowsAboutTheScreen, model_.rowCount());
            for (int row = std::max(0, top); row < end; ++row)
                if (selected.Contains(grid_.Rows()->BookmarkAt(static_cast<std::size_t>(row))))
                    rows.push_back(row);
            return rows;
        }
        for (const std::int64_t bookmark : selected.All())
            if (const auto row = grid_.Rows()->RowOf(bookmark))
                if (*row < static_cast<std::size_t>(model_.rowCount()))
                    rows.push_back(static_cast<int>(*row));
        std::sort(rows.begin(), rows.end());
        return rows;
    }

    bool Filter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ContextMenu) return ContextMenu(*event);
        if (event->type() == QEvent::MouseButtonPress && watched != &view_)
            return RightPress(*static_cast<QMouseEvent*>(event));
        if (event->type() != QEvent::KeyPress || watched != &view_) return false;
        if (view_.isPersistentEditorOpen(view_.currentIndex())) return false;
        return KeyOfGrid(*static_cast<QKeyEvent*>(event));
    }

    bool KeyOfGrid(const QKeyEvent& key) {
        const bool enter = key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter;
        if (enter && grid_.onDoubleClick && grid_.CurrentRow()) {
            RunHandler(grid_.onDoubleClick);
            return true;
        }
        if (key.matches(QKeySequence::Copy) && grid_.onCopy) {
            Copy();
            return true;
        }
        if (key.matches(QKeySequence::Paste) && grid_.onPaste) {
            Paste();
            return true;
        }
        const auto take = grid_.onKey;
        return take &&
               take(
                   FromQt(QKeySequence(key.keyCombination()).toString(QKeySequence::PortableText)));
    }

    void Copy() {
        const auto copy = grid_.onCopy;
        const QString text = copy ? ToQt(copy()) : QString();
        if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
    }

    void Paste() {
        if (grid_.onPaste) RunHandler(grid_.onPaste, FromQt(QGuiApplication::clipboard()->text()));
    }

    /// The right button adds the row under it to the selection.
    bool RightPress(const QMouseEvent& event) {
        if (event.button() != Qt::RightButton || !grid_.onContextMenu) return false;
        const QModelIndex cell = view_.indexAt(event.position().toPoint());
        if (!cell.isValid()) return true;
        const QPointer<ControlBinding> self(this);
        selection_.setCurrentIndex(cell, QItemSelectionModel::NoUpdate);
        if (self && grid_.Rows())
            grid_.AddSelected(grid_.Rows()->BookmarkAt(static_cast<std::size_t>(cell.row())));
        return true;
    }

    bool ContextMenu(QEvent& event) {
        if (!grid_.onContextMenu) return false;
        event.accept();
        RunHandler(grid_.onContextMenu);
        return true;
    }

    Grid& grid_;
    QTableView& view_;
    GridModel& model_;  ///< the view's own: both may be at work when the binding goes
    GridSelectionModel& selection_;
    std::vector<std::string> captions_;
    QTimer later_;
    Subscription rowChanged_;
    Subscription copy_;
    Subscription paste_;
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
