#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Lets the user pick a tag from the list of the kind that has the tool of that name, and puts it
/// in at the caret.
void InsertExecuteTag(Workbench& wb, RichTextBox& body, const std::string& toolName);

}  // namespace mailvane
