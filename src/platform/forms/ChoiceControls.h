#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/forms/TextControls.h"
#include "platform/os/DateTime.h"

namespace mailvane {

/// Checked (1) or not (0). onClick runs whenever the value changes, by hand or by code.
class CheckBox final : public Control {
public:
    CheckBox(Form& form, std::string name, bool checked = false,
             std::function<void()> onClick = {});

    bool Checked() const { return checked_; }
    int Value() const { return checked_ ? 1 : 0; }
    void SetChecked(bool checked);
    const std::string& Caption() const { return caption_; }  ///< "" leaves the design's
    void SetCaption(std::string caption);
    std::string ShownText() const override { return checked_ ? "1" : "0"; }

    std::function<void()> onClick;

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    bool checked_;
    std::string caption_;
};

/// One of a group of which only one is set. The group is the form's unless a name is given.
class OptionButton final : public Control {
public:
    OptionButton(Form& form, std::string name, bool set = false, std::string group = {},
                 std::function<void()> onClick = {});

    bool IsSet() const { return set_; }
    /// Setting one clears the others of its group, then runs onClick. Clearing runs nothing.
    void SetValue(bool set);
    /// The name given, "" for the form's own group.
    const std::string& Group() const { return group_; }
    const std::string& Caption() const { return caption_; }
    void SetCaption(std::string caption);
    std::string ShownText() const override { return set_ ? "1" : "0"; }

    std::function<void()> onClick;

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    bool set_;
    std::string group_;
    std::string caption_;
};

/// A list of texts with at most one chosen: what combo boxes and lists share. ListIndex -1 is none.
class ItemsControl : public Control {
public:
    const std::vector<std::string>& Items() const { return items_; }
    int Count() const { return static_cast<int>(items_.size()); }
    int EntryCount() const override { return Count(); }
    void Clear();  ///< removes all, ListIndex becomes -1
    void AddItem(std::string item);
    void InsertItem(int index, std::string item);
    void SetItem(int index, std::string item);
    void RemoveItem(int index);
    void SetItems(std::vector<std::string> items);
    int ListIndex() const { return listIndex_; }
    /// Chooses an entry and runs onClick when it differs; an index out of range chooses nothing.
    virtual void SetListIndex(int index);
    /// First entry with this text, exact; -1 when there is none.
    int IndexOf(const std::string& item) const;

    std::function<void()> onClick;

protected:
    using Control::Control;
    void StoreListIndex(int index) { listIndex_ = index; }
    /// Entries have moved: `newIndex` gives the new index for an old one, -1 for one that is gone.
    virtual void Renumber(const std::function<int(int)>& newIndex);
    /// The entry that VALUE names, "#N" or its text, exact or else without regard to case; -1 when
    /// there is none.
    int EntryOf(const std::string& value) const;

private:
    void EntriesMoved(const std::function<int(int)>& newIndex);
    std::vector<std::string> items_;
    int listIndex_ = -1;
};

class ComboBox final : public ItemsControl {
public:
    enum class Style { DropDownList, Editable };
    ComboBox(Form& form, std::string name, Style style = Style::DropDownList);

    Style BoxStyle() const { return style_; }
    /// The chosen entry, or what was typed into an editable box.
    std::string Text() const;
    /// Chooses the entry with this text. Without an exact one a drop-down list takes one that
    /// differs in case only, and an editable box takes the text as typed. False when a drop-down
    /// list has no such entry.
    bool SetText(const std::string& text);
    void SetListIndex(int index) override;
    std::string ShownText() const override { return Text(); }

    std::function<void()> onChange;  ///< typed text changed

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    Style style_;
    std::string typed_;
};

class ListBox : public ItemsControl {
public:
    /// Ticks: a box before each entry that is ticked when the entry is selected; the chosen entry
    /// is only where the keyboard stands.
    enum class Selection { Single, Multiple, Ticks };
    ListBox(Form& form, std::string name, Selection selection = Selection::Single);

    Selection SelectionMode() const { return selection_; }
    /// The chosen entry, "" for none.
    std::string Text() const;
    std::string FirstItem() const { return Items().empty() ? std::string() : Items().front(); }
    // Multiple selection, ticks. SelectedItems are indices in order. A change is told as
    // RowSelection and runs onClick. In a list of single selection these are ListIndex.
    bool IsSelected(int index) const;
    void SetSelected(int index, bool selected);
    std::vector<int> SelectedItems() const;
    std::string ShownText() const override { return Text(); }

    std::function<void()> onDoubleClick;
    /// Dragging an entry carries this text; without it nothing is dragged.
    std::function<std::string(int index)> dragText;
    /// A text, or the path of a file, was dropped here; without it nothing can be dropped.
    std::function<void(const std::string& text)> onDropText;
    std::function<void()> onContextMenu;  ///< right click, or the key for it

protected:
    ListBox(Form& form, std::string name, Selection selection, ControlKind kind);
    ControlAnswer DoSetByUser(const std::string& value) override;
    void Renumber(const std::function<int(int)>& newIndex) override;

private:
    Selection selection_;
    std::vector<int> selected_;
};

/// A list that keeps its own file, one line an entry, and has buttons to add, edit, delete and move
/// entries. What an entry means is its owner's business.
class ListBoks final : public ListBox {
public:
    ListBoks(Form& form, std::string name);

    void SetFile(std::string path) { file_ = std::move(path); }
    void Load();        ///< a missing file gives an empty list
    bool Save() const;  ///< false when the file could not be written

    std::function<void()> onAdd;
    std::function<void()> onEdit;
    std::function<bool()> onBeforeDelete;  ///< false keeps the entry

    // The buttons. Edit, delete, up and down need a chosen entry; the last three write the file.
    void PressAdd();
    void PressEdit();
    void PressDelete();
    void MoveUp();
    void MoveDown();

private:
    void MoveBy(int distance);
    std::string file_;
};

class Slider final : public Control {
public:
    Slider(Form& form, std::string name, int minimum, int maximum, int value);

    int Minimum() const { return minimum_; }
    int Maximum() const { return maximum_; }
    int Value() const { return value_; }
    void SetValue(int value);  ///< kept within the bounds; runs onChange when it differs
    std::string ShownText() const override { return std::to_string(value_); }

    std::function<void()> onChange;

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    int minimum_;
    int maximum_;
    int value_;
};

class DatePicker final : public Control {
public:
    DatePicker(Form& form, std::string name, DateTime value = {});

    DateTime Value() const { return value_; }
    void SetValue(DateTime value);
    std::string ShownText() const override { return value_.ShortDate(); }

    std::function<void()> onChange;

protected:
    ControlAnswer DoSetByUser(const std::string& value) override;

private:
    DateTime value_;
};

}  // namespace mailvane
