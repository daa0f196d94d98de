#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/forms/Control.h"

namespace mailvane {

/// What a grid shows. The grid asks for the rows on the screen only.
class GridRows {
public:
    virtual ~GridRows() = default;
    virtual std::size_t Count() const = 0;
    /// Texts of up to `count` rows from `first`, one text a column in the grid's column order.
    virtual std::vector<std::vector<std::string>> Read(std::size_t first,
                                                       std::size_t count) const = 0;
    /// Names the row as long as it exists; a selection holds these.
    virtual std::int64_t BookmarkAt(std::size_t row) const = 0;
    virtual std::optional<std::size_t> RowOf(std::int64_t bookmark) const = 0;
    virtual std::string IconOf(std::size_t) const { return {}; }  ///< icon theme name, "" for none
};

/// Rows held by the grid's owner; a row's bookmark is its number.
class GridTable final : public GridRows {
public:
    std::size_t Count() const override { return rows.size(); }
    std::vector<std::vector<std::string>> Read(std::size_t first, std::size_t count) const override;
    std::int64_t BookmarkAt(std::size_t row) const override {
        return static_cast<std::int64_t>(row);
    }
    std::optional<std::size_t> RowOf(std::int64_t bookmark) const override;
    std::string IconOf(std::size_t row) const override;

    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> icons;  ///< by row; may be shorter
};

/// How a column's values are shown and edited.
enum class CellKind {
    Text,
    Number,  ///< at the right
    Date,
    YesNo,  ///< a check box for the texts "True" and "False"
    Memo    ///< texts of several lines, edited in a larger box
};

struct GridColumn {
    std::string name;
    std::string caption;
    double width = 1500;    ///< twips
    int position = 0;       ///< place on the screen, from 0
    std::string headStyle;  ///< "ASC", "DESC" or "": the sort mark in the head
    bool visible = true;
    CellKind kind = CellKind::Text;
    bool fixed = false;  ///< its values are not edited

    friend bool operator==(const GridColumn&, const GridColumn&) = default;
};

/// The selected rows, by bookmark, in the order in which they were selected.
class SelectedBookmarks {
public:
    std::size_t Count() const { return order_.size(); }
    std::int64_t Item(std::size_t index) const { return order_.at(index); }
    bool Contains(std::int64_t bookmark) const;
    const std::vector<std::int64_t>& All() const { return order_; }

private:
    friend class Grid;
    bool Mark(std::int64_t bookmark);  ///< as a member; false when it is one already
    bool Add(std::int64_t bookmark);   ///< false when it is there already
    void Set(std::vector<std::int64_t> bookmarks);
    void Remove(const std::vector<std::int64_t>& bookmarks);
    std::vector<std::int64_t> order_;
    /// A bit for each of 64 neighbours: bookmarks lie close together, and a selection of a million
    /// rows takes little more than its list.
    std::unordered_map<std::int64_t, std::uint64_t> members_;
};

/// A table of rows and columns. Rows count from 0 here.
class Grid final : public Control {
public:
    Grid(Form& form, std::string name);

    /// Shared with its owner; null shows nothing. No row is current or selected afterwards; no
    /// handler runs.
    void SetRows(std::shared_ptr<GridRows> rows);
    const std::shared_ptr<GridRows>& Rows() const { return rows_; }
    std::size_t RowCount() const { return rows_ ? rows_->Count() : 0; }
    int EntryCount() const override { return static_cast<int>(RowCount()); }
    /// The owner has changed rows: everything on the screen is read again. A current row behind the
    /// last one is current no longer.
    void RowsChanged();
    /// Only this row has changed.
    void RowChanged(std::size_t row);
    Event<std::size_t> rowChanged;

    void SetColumns(std::vector<GridColumn> columns);
    const std::vector<GridColumn>& Columns() const { return columns_; }
    void SetColumnWidth(std::size_t column, double twips);
    /// Moves no other column: set all of them. Columns of the same place stand in their own order.
    void SetColumnPosition(std::size_t column, int position);
    void SetHeadStyle(std::size_t column, std::string style);

    std::optional<std::size_t> CurrentRow() const { return currentRow_; }
    /// Makes a row current and runs onRowChange when it differs; out of range makes none current.
    void SetCurrentRow(std::optional<std::size_t> row);
    std::size_t CurrentColumn() const { return currentColumn_; }
    void SetCurrentColumn(std::size_t column);
    /// The texts of the current row, separated by tabs; "" without one.
    std::string ShownText() const override;

    const SelectedBookmarks& SelBookmarks() const { return selection_; }
    void AddSelected(std::int64_t bookmark);
    void RemoveSelected(const std::vector<std::int64_t>& bookmarks);
    void RemoveAllSelected();
    void SetSelected(std::vector<std::int64_t> bookmarks);

    bool Redraw() const { return redraw_; }
    void SetRedraw(bool redraw);  ///< off: the screen stays as it is until it is on again

    std::function<void()> onRowChange;
    std::function<void(std::size_t column)> onHeadClick;
    std::function<void()> onDoubleClick;
    std::function<void()> onSelectionChange;
    std::function<void()> onContextMenu;  ///< right click; the row under it is selected by then
    /// The user has edited a cell; false refuses the text, which the handler has explained: the
    /// user goes on editing it. Without the handler nothing can be edited.
    std::function<bool(std::size_t row, std::size_t column, const std::string& text)> onCellEdit;
    /// A key pressed while no cell is edited, written as a shortcut ("Ctrl+A", "Del"); true when it
    /// was for the handler.
    std::function<bool(const std::string& key)> onKey;
    /// Ctrl+C and Ctrl+V: gives the text for the clipboard, takes the one that stands there.
    std::function<std::string()> onCopy;
    std::function<void(const std::string& text)> onPaste;

    // The same as the keys. Nothing happens without a screen.
    void CopyToClipboard() { clipboardCopy.Tell(); }
    void PasteFromClipboard() { clipboardPaste.Tell(); }
    Event<> clipboardCopy;
    Event<> clipboardPaste;

private:
    void ChangeColumn(std::size_t column, const std::function<void(GridColumn&)>& change);
    void SelectionChanged();
    std::shared_ptr<GridRows> rows_;
    std::vector<GridColumn> columns_;
    std::optional<std::size_t> currentRow_;
    std::size_t currentColumn_ = 0;
    SelectedBookmarks selection_;
    bool redraw_ = true;
};

}  // namespace mailvane
