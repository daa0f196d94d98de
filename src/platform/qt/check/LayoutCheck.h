#pragma once

#include <string>
#include <vector>

class QWidget;

namespace mailvane {

/// What a person cannot read in a window as it is laid out now, one complaint an entry, each
/// beginning with the widget's name: texts of labels, buttons, check boxes and group boxes that
/// need more room than they have, names in charts cut to points, and widgets that lie over each
/// other.
std::vector<std::string> CheckLayout(const QWidget& content);

}  // namespace mailvane
