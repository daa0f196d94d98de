#include "merge/message/MergeDocument.h"

#include <charconv>
#include <cstdint>

#include "core/project/Project.h"
#include "core/records/Sifrant.h"
#include "core/run/Progress.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr std::string_view NameEnd = "*|*";
constexpr std::string_view EntryEnd = "#|#";

/// The field list and the table box show what the database has; they are no part of a message.
bool BelongsToDocument(const Control& control) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::RichTextBox:
        case ControlKind::CheckBox:
        case ControlKind::OptionButton:
            return true;
        case ControlKind::ComboBox:
            return control.Name() != "cmbTable";
        case ControlKind::ListBox:
            return control.Name() != "lstFields";
        case ControlKind::Label:
            return control.Name() == "lblTable";
        default:
            return false;
    }
}

/// The value of the first entry of that name, "" when there is none. A value ends at the next
/// separator of either kind.
std::string ValueIn(const std::vector<std::string>& entries, const std::string& name) {
    for (const std::string& entry : entries) {
        const std::vector<std::string> parts = Split(entry, NameEnd);
        if (parts.front() == name) return parts.size() > 1 ? parts[1] : std::string();
    }
    return {};
}

std::optional<int> ListIndexIn(const std::string& value) {
    std::int16_t index = 0;
    const char* end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, index);
    return error == std::errc() && stop == end ? std::optional<int>(index) : std::nullopt;
}

}  // namespace

std::string ReadMergeControlValues(Workbench& wb, const Form& form) {
    std::string text;
    UpdateProgress(wb, static_cast<long>(form.Controls().size()), 0, {}, {}, false);
    long step = 0;
    for (const Control* control : form.Controls()) {
        if (BelongsToDocument(*control))
            text.append(control->Name())
                .append(NameEnd)
                .append(ControlValueText(*control))
                .append(EntryEnd);
        UpdateProgress(wb, 0, ++step);
    }
    return text.append("\r\n");
}

std::optional<int> ApplyMergeControlValues(Form& form, const std::string& text) {
    const std::vector<std::string> entries = Split(text, EntryEnd);
    std::optional<int> toIndex;
    for (Control* control : form.Controls()) {
        if (!BelongsToDocument(*control)) continue;
        const std::string value = ValueIn(entries, control->Name());
        SetControlValue(*control, value);
        if (control->Name() == "txtTo") toIndex = ListIndexIn(value);
    }
    return toIndex;
}

std::string ScrambleMergeDocument(const std::string& text) {
    return Sifrant().Sifriraj(text, ProjectKey);
}

std::string UnscrambleMergeDocument(const std::string& content) {
    return Sifrant().DeSifriraj(content, ProjectKey);
}

}  // namespace mailvane
