#include "merge/run/RecipientRow.h"

#include <algorithm>

namespace mailvane {

RecipientRow::RecipientRow(std::shared_ptr<Recordset> recipients,
                           const std::vector<std::string>& names)
    : recipients_(std::move(recipients)), names_(names), columns_(names.size()) {
    const auto& fields = recipients_->Fields();
    for (std::size_t i = 0; i < names_.size(); ++i) {
        const auto field = std::ranges::find_if(
            fields, [&](const Field& candidate) { return SameName(candidate.name, names_[i]); });
        if (field != fields.end())
            columns_[i].index = static_cast<std::size_t>(field - fields.begin());
    }
}

void RecipientRow::Renew() {
    for (Column& column : columns_)
        column.state = State::Unread;
}

const std::string* RecipientRow::Text(std::size_t position) {
    Column& column = columns_[position];
    if (column.state == State::Unread) Read(column);
    return column.state == State::Present ? &column.text : nullptr;
}

const std::string* RecipientRow::Text(const std::string& name) {
    const auto found = std::ranges::find_if(
        names_, [&](const std::string& candidate) { return SameName(candidate, name); });
    return found == names_.end() ? nullptr : Text(static_cast<std::size_t>(found - names_.begin()));
}

void RecipientRow::Read(Column& column) {
    column.state = State::Absent;
    if (!column.index) return;
    const auto value = recipients_->Get(*column.index);
    if (value.Failed()) return;
    auto text = value->ToText();
    if (text.Failed()) return;
    column.text = std::move(*text);
    column.state = State::Present;
}

}  // namespace mailvane
