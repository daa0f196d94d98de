#include <algorithm>
#include <charconv>

#include "platform/forms/ChoiceControls.h"
#include "platform/os/TextCase.h"

namespace mailvane {

namespace {

int FindEntry(const std::vector<std::string>& items, const std::string& text, bool exact) {
    const auto found = std::find_if(items.begin(), items.end(), [&](const std::string& item) {
        return exact ? item == text : SameName(item, text);
    });
    return found == items.end() ? -1 : static_cast<int>(found - items.begin());
}

}  // namespace

void ItemsControl::Clear() {
    SetItems({});
}

void ItemsControl::AddItem(std::string item) {
    items_.push_back(std::move(item));
    Changed(Property::Items);
}

void ItemsControl::InsertItem(int index, std::string item) {
    const int place = std::clamp(index, 0, Count());
    items_.insert(items_.begin() + place, std::move(item));
    EntriesMoved([place](int old) { return old >= place ? old + 1 : old; });
}

void ItemsControl::SetItem(int index, std::string item) {
    if (index < 0 || index >= Count()) return;
    std::string& entry = items_[static_cast<std::size_t>(index)];
    if (entry == item) return;
    entry = std::move(item);
    Changed(Property::Items);
}

void ItemsControl::RemoveItem(int index) {
    if (index < 0 || index >= Count()) return;
    items_.erase(items_.begin() + index);
    EntriesMoved([index](int old) { return old == index ? -1 : old > index ? old - 1 : old; });
}

void ItemsControl::SetItems(std::vector<std::string> items) {
    if (items_.empty() && items.empty()) return;
    items_ = std::move(items);
    EntriesMoved([](int) { return -1; });
}

void ItemsControl::EntriesMoved(const std::function<int(int)>& newIndex) {
    const int before = listIndex_;
    Renumber(newIndex);
    Changed(Property::Items);
    if (listIndex_ != before) Changed(Property::ListIndex);
}

void ItemsControl::SetListIndex(int index) {
    if (index < 0 || index >= Count()) index = -1;
    if (index == listIndex_) return;
    listIndex_ = index;
    Changed(Property::ListIndex);
    RunHandler(onClick);
}

int ItemsControl::IndexOf(const std::string& item) const {
    return FindEntry(items_, item, true);
}

void ItemsControl::Renumber(const std::function<int(int)>& newIndex) {
    if (listIndex_ >= 0) listIndex_ = newIndex(listIndex_);
}

int ItemsControl::EntryOf(const std::string& value) const {
    if (value.size() > 1 && value.front() == '#') {
        int number = -1;
        const char* end = value.data() + value.size();
        const auto result = std::from_chars(value.data() + 1, end, number);
        if (result.ec == std::errc() && result.ptr == end)
            return number >= 0 && number < Count() ? number : -1;
    }
    const int exact = IndexOf(value);
    return exact >= 0 ? exact : FindEntry(items_, value, false);
}

ComboBox::ComboBox(Form& form, std::string name, Style style)
    : ItemsControl(form, std::move(name), ControlKind::ComboBox), style_(style) {}

std::string ComboBox::Text() const {
    return ListIndex() >= 0 ? Items()[static_cast<std::size_t>(ListIndex())] : typed_;
}

bool ComboBox::SetText(const std::string& text) {
    int index = IndexOf(text);
    if (index < 0 && style_ == Style::DropDownList) index = FindEntry(Items(), text, false);
    if (index >= 0) {
        SetListIndex(index);
        return true;
    }
    if (style_ == Style::DropDownList) return false;
    if (text == Text()) return true;
    const bool leavesEntry = ListIndex() >= 0;
    StoreListIndex(-1);
    typed_ = text;
    if (leavesEntry) Changed(Property::ListIndex);
    Changed(Property::Text);
    RunHandler(onChange);
    return true;
}

void ComboBox::SetListIndex(int index) {
    const bool typedGoes = !typed_.empty();
    typed_.clear();
    if (typedGoes) Changed(Property::Text);
    ItemsControl::SetListIndex(index);
}

ControlAnswer ComboBox::DoSetByUser(const std::string& value) {
    // In an editable box a text is typed, and only a number chooses.
    const bool chooses = style_ == Style::DropDownList || value.starts_with('#');
    if (const int index = chooses ? EntryOf(value) : -1; index >= 0) {
        SetListIndex(index);
        return ControlAnswer::Done;
    }
    return SetText(value) ? ControlAnswer::Done : ControlAnswer::NoSuchEntry;
}

ListBox::ListBox(Form& form, std::string name, Selection selection)
    : ListBox(form, std::move(name), selection, ControlKind::ListBox) {}

ListBox::ListBox(Form& form, std::string name, Selection selection, ControlKind kind)
    : ItemsControl(form, std::move(name), kind), selection_(selection) {}

std::string ListBox::Text() const {
    return ListIndex() >= 0 ? Items()[static_cast<std::size_t>(ListIndex())] : std::string();
}

bool ListBox::IsSelected(int index) const {
    if (selection_ == Selection::Single) return index >= 0 && index == ListIndex();
    return std::binary_search(selected_.begin(), selected_.end(), index);
}

void ListBox::SetSelected(int index, bool selected) {
    if (index < 0 || index >= Count() || IsSelected(index) == selected) return;
    if (selection_ == Selection::Single) {
        SetListIndex(selected ? index : -1);
        return;
    }
    const auto place = std::lower_bound(selected_.begin(), selected_.end(), index);
    if (selected) {
        selected_.insert(place, index);
    } else {
        selected_.erase(place);
    }
    Changed(Property::RowSelection);
    RunHandler(onClick);
}

std::vector<int> ListBox::SelectedItems() const {
    if (selection_ != Selection::Single) return selected_;
    return ListIndex() >= 0 ? std::vector<int>{ListIndex()} : std::vector<int>{};
}

ControlAnswer ListBox::DoSetByUser(const std::string& value) {
    const int index = EntryOf(value);
    if (index < 0) return ControlAnswer::NoSuchEntry;
    if (selection_ == Selection::Single) {
        SetListIndex(index);
        return ControlAnswer::Done;
    }
    if (index != ListIndex()) {
        StoreListIndex(index);
        Changed(Property::ListIndex);
    }
    SetSelected(index, true);
    return ControlAnswer::Done;
}

void ListBox::Renumber(const std::function<int(int)>& newIndex) {
    ItemsControl::Renumber(newIndex);
    std::transform(selected_.begin(), selected_.end(), selected_.begin(), newIndex);
    std::erase(selected_, -1);
}

}  // namespace mailvane
