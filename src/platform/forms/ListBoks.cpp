#include <algorithm>
#include <utility>

#include "platform/forms/ChoiceControls.h"
#include "platform/os/Files.h"

namespace mailvane {

ListBoks::ListBoks(Form& form, std::string name)
    : ListBox(form, std::move(name), Selection::Single, ControlKind::ListBoks) {}

void ListBoks::Load() {
    const std::string text = ReadWholeFile(file_).value_or(std::string());
    std::vector<std::string> items;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) items.push_back(std::move(line));
        start = end + 1;
    }
    SetItems(std::move(items));
}

bool ListBoks::Save() const {
    std::string text;
    for (std::string line : Items()) {
        // A line end inside an entry would come back as two entries.
        std::replace_if(
            line.begin(), line.end(), [](char c) { return c == '\r' || c == '\n'; }, ' ');
        text += line + "\r\n";
    }
    return !file_.empty() && WriteWholeFile(file_, text);
}

void ListBoks::PressAdd() {
    if (Enabled()) RunHandler(onAdd);
}

void ListBoks::PressEdit() {
    if (Enabled() && ListIndex() >= 0) RunHandler(onEdit);
}

void ListBoks::PressDelete() {
    if (!Enabled() || ListIndex() < 0) return;
    if (const auto mayDelete = onBeforeDelete; mayDelete && !mayDelete()) return;
    RemoveItem(ListIndex());
    Save();
}

void ListBoks::MoveUp() {
    MoveBy(-1);
}

void ListBoks::MoveDown() {
    MoveBy(1);
}

void ListBoks::MoveBy(int distance) {
    const int from = ListIndex();
    const int to = from + distance;
    if (!Enabled() || from < 0 || to < 0 || to >= Count()) return;
    std::string moved = Text();
    SetItem(from, Items()[static_cast<std::size_t>(to)]);
    SetItem(to, std::move(moved));
    StoreListIndex(to);
    Changed(Property::ListIndex);
    Save();
}

}  // namespace mailvane
