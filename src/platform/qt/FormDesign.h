#pragma once

#include <QString>
#include <string>

class QWidget;

namespace mailvane {

/// The file with the design of the form of that name.
QString DesignPath(const std::string& formName);
/// The design as widgets inside `parent`, which owns them; null when there is no design, or it
/// cannot be read (one line is logged then).
QWidget* LoadDesign(const std::string& formName, QWidget* parent);

}  // namespace mailvane
