#pragma once

#include "platform/forms/ActiveBar.h"

namespace mailvane {

// The menus of a right click on the lists of files.
inline constexpr const char* AttachmentBand = "Attachment";
inline constexpr const char* HtmlFileBand = "HTML File";

/// Gives the merge view's bar its menus and tool bars.
void AddMergeBands(ActiveBar& bar);

}  // namespace mailvane
