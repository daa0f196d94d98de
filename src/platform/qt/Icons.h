#pragma once

#include <QIcon>
#include <string>

namespace mailvane {

/// Looks for icons in the desktop's theme first, then in Breeze, light or dark as the palette is.
void UseIconThemes();
/// The icon of that name, a null one for "" or a name that no theme knows.
QIcon ThemeIcon(const std::string& name);

}  // namespace mailvane
