#include "platform/qt/FormDesign.h"

#include <QFile>
#include <QUiLoader>

#include "platform/qt/QtText.h"

namespace mailvane {

QString DesignPath(const std::string& formName) {
    return QStringLiteral("forms:%1.ui").arg(ToQt(formName));
}

QWidget* LoadDesign(const std::string& formName, QWidget* parent) {
    QFile file(DesignPath(formName));
    if (!file.open(QIODevice::ReadOnly)) return nullptr;
    QUiLoader loader;
    QWidget* root = loader.load(&file, parent);
    if (!root) qWarning("%s: %s", formName.c_str(), qPrintable(loader.errorString()));
    return root;
}

}  // namespace mailvane
