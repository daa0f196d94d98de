#include "platform/qt/Icons.h"

#include <QGuiApplication>
#include <QPalette>
#include <QStringList>

#include "platform/qt/QtText.h"

namespace mailvane {

void UseIconThemes() {
    const QPalette palette = QGuiApplication::palette();
    const bool dark = palette.color(QPalette::Window).lightness() <
                      palette.color(QPalette::WindowText).lightness();
    const QString breeze = dark ? QStringLiteral("breeze-dark") : QStringLiteral("breeze");
    const QString shared = QStringLiteral("/usr/share/icons");
    QStringList paths = QIcon::themeSearchPaths();
    if (!paths.contains(shared)) QIcon::setThemeSearchPaths(paths << shared);
    QIcon::setFallbackThemeName(breeze);
    const QString theme = QIcon::themeName();
    const bool noDesktop = theme.isEmpty() || theme == QStringLiteral("hicolor");
    if (noDesktop || theme.startsWith(QStringLiteral("breeze"))) QIcon::setThemeName(breeze);
}

QIcon ThemeIcon(const std::string& name) {
    return name.empty() ? QIcon() : QIcon::fromTheme(ToQt(name));
}

}  // namespace mailvane
