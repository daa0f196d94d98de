#pragma once

#include <QString>

namespace mailvane {

/// The same page without tables that stand deeper inside others than any page of mail has them:
/// what they hold stays. Qt's work doubles with every table in a table, and deep trees exhaust its
/// stack; so elements deeper than the parser's own limit (256) are cut off.
QString BoundNesting(const QString& html);

}  // namespace mailvane
