#pragma once

#include <QString>
#include <cstddef>
#include <string>

namespace mailvane {

// Texts of controls are UTF-8 with CR LF line ends, positions in them count bytes. Texts of widgets
// are UTF-16 with LF line ends, positions count code units.

QString ToQt(const std::string& text);
std::string FromQt(const QString& text);  ///< line ends as they are

QString ToWidgetText(const std::string& text);
std::string FromWidgetText(const QString& text);

/// The place in the widget of byte `position` of `text`.
int ToWidgetPosition(const std::string& text, std::size_t position);
/// The byte of `text` at a widget's place.
std::size_t FromWidgetPosition(const std::string& text, int position);

/// The text as a tool tip shows it: never read as HTML.
QString PlainToolTip(const std::string& text);

}  // namespace mailvane
