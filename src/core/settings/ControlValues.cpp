#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_map>

#include "core/Waiting.h"
#include "core/project/Project.h"
#include "core/run/Progress.h"
#include "core/text/Text.h"

namespace mailvane {

namespace {

constexpr std::string_view NameEnd = "*|*";
constexpr std::string_view ItemEnd = "#|#";

bool HasSettingValue(const Control& control) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::CheckBox:
        case ControlKind::Slider:
        case ControlKind::OptionButton:
        case ControlKind::ComboBox:
            return true;
        default:
            return false;
    }
}

/// The values by name; of two items with one name the first counts. A value ends at the next
/// separator of either kind.
std::unordered_map<std::string_view, std::string_view> ValuesIn(std::string_view text) {
    std::unordered_map<std::string_view, std::string_view> values;
    while (!text.empty()) {
        const std::size_t itemEnd = text.find(ItemEnd);
        std::string_view item = text.substr(0, itemEnd);
        text.remove_prefix(itemEnd == std::string_view::npos ? text.size()
                                                             : itemEnd + ItemEnd.size());
        const std::size_t nameEnd = item.find(NameEnd);
        const std::string_view name = item.substr(0, nameEnd);
        item.remove_prefix(nameEnd == std::string_view::npos ? item.size()
                                                             : nameEnd + NameEnd.size());
        values.try_emplace(name, item.substr(0, item.find(NameEnd)));
    }
    return values;
}

/// A whole number no farther from zero than any index, value or position can be.
std::optional<int> WholeNumber(const std::string& value) {
    constexpr double Farthest = 1e9;
    const double number = NumberOf(value);
    if (!IsNumeric(value) || std::fabs(number) > Farthest) return std::nullopt;
    return static_cast<int>(std::lrint(number));
}

std::optional<bool> Boolean(const std::string& value) {
    if (EqualText(value, "True")) return true;
    if (EqualText(value, "False")) return false;
    const std::optional<int> number = WholeNumber(value);
    return number ? std::optional<bool>(*number != 0) : std::nullopt;
}

void SetListIndexIfThere(ComboBox& box, const std::string& value) {
    const std::optional<int> index = WholeNumber(value);
    if (index && *index >= -1 && *index < box.Count()) box.SetListIndex(*index);
}

}  // namespace

std::string ControlValueText(const Control& control) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::RichTextBox:
        case ControlKind::Label:
            return static_cast<const TextControl&>(control).Text();
        case ControlKind::CheckBox:
            return std::to_string(static_cast<const CheckBox&>(control).Value());
        case ControlKind::Slider:
            return std::to_string(static_cast<const Slider&>(control).Value());
        case ControlKind::OptionButton:
            return static_cast<const OptionButton&>(control).IsSet() ? "True" : "False";
        case ControlKind::ComboBox:
            return std::to_string(static_cast<const ComboBox&>(control).ListIndex());
        case ControlKind::ListBox:
            return static_cast<const ListBox&>(control).FirstItem();
        default:
            return {};
    }
}

void SetControlValue(Control& control, const std::string& value) {
    switch (control.Kind()) {
        case ControlKind::TextBox:
        case ControlKind::RichTextBox:
            static_cast<TextControl&>(control).SetText(value);
            return;
        case ControlKind::ListBox: {
            auto& list = static_cast<ListBox&>(control);
            list.Clear();
            if (!value.empty()) list.AddItem(value);
            return;
        }
        default:
            break;
    }
    if (value.empty()) return;
    switch (control.Kind()) {
        case ControlKind::Label:
            static_cast<Label&>(control).SetText(value);
            return;
        case ControlKind::CheckBox:
            if (const auto checked = Boolean(value))
                static_cast<CheckBox&>(control).SetChecked(*checked);
            return;
        case ControlKind::Slider:
            if (const auto number = WholeNumber(value))
                static_cast<Slider&>(control).SetValue(*number);
            return;
        case ControlKind::OptionButton:
            if (const auto set = Boolean(value)) static_cast<OptionButton&>(control).SetValue(*set);
            return;
        case ControlKind::ComboBox:
            SetListIndexIfThere(static_cast<ComboBox&>(control), value);
            return;
        default:
            return;
    }
}

std::string ReadControlValues(Workbench& wb, const Form& form) {
    std::string text;
    long step = 0;
    for (const Control* control : form.Controls()) {
        if (HasSettingValue(*control))
            text.append(control->Name())
                .append(NameEnd)
                .append(ControlValueText(*control))
                .append(ItemEnd);
        UpdateProgress(wb, 0, ++step);
        YieldBriefly(wb);
    }
    return text.append("\r\n");
}

bool NamesControlOf(const Form& form, const std::string& text) {
    const auto values = ValuesIn(text);
    return std::ranges::any_of(form.Controls(), [&](const Control* control) {
        return HasSettingValue(*control) && values.contains(control->Name());
    });
}

void ApplyControlValues(Workbench& wb, Form& form, const std::string& text) {
    const auto values = ValuesIn(text);
    // The bar of the main window is enough: this takes a moment, and a window would only flash.
    UpdateProgress(wb, static_cast<long>(form.Controls().size()), 0, {}, {}, false);
    long step = 0;
    for (Control* control : form.Controls()) {
        if (HasSettingValue(*control)) {
            const auto found = values.find(control->Name());
            SetControlValue(*control,
                            found == values.end() ? std::string() : std::string(found->second));
        }
        UpdateProgress(wb, 0, ++step);
        YieldBriefly(wb);
    }
}

}  // namespace mailvane
