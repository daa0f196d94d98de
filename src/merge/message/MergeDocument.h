#pragma once

#include <optional>
#include <string>

#include "core/Workbench.h"

namespace mailvane {

inline constexpr const char* MergeDocumentExtension = ".dmg";
inline constexpr const char* MergeDocumentTitle = "Mailvane messages";

/// The message as text: name, "*|*", value, "#|#" for each control of the form that belongs to a
/// merge document, and CR LF behind the last. Nothing in a value is escaped.
std::string ReadMergeControlValues(Workbench& wb, const Form& form);

/// The inverse. Texts and lists without a value become empty, other controls without one stay.
/// Gives the list index of txtTo as it stands in the text, which may name a column that is not
/// listed yet.
std::optional<int> ApplyMergeControlValues(Form& form, const std::string& text);

/// The file's content for such a text, and back. An unreadable content gives garbage, in which no
/// control finds its value.
std::string ScrambleMergeDocument(const std::string& text);
std::string UnscrambleMergeDocument(const std::string& content);

}  // namespace mailvane
