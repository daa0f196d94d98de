#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Gives a form's bar the tools that edit the text of its message: the clipboard, Find, Spelling,
/// Text from File, Signature, tags, the formats, and the submenu of the sizes that "miFontSize"
/// offers.
void AddBodyTools(Workbench& wb, ActiveBar& bar, RichTextBox& body);
inline constexpr const char* FontSizeBand = "FontSizes";

/// Selects the next place behind the selection, or else the first, that holds the text; a box says
/// so when there is none.
void FindInBody(Workbench& wb, RichTextBox& body, const std::string& text, bool matchCase);

}  // namespace mailvane
