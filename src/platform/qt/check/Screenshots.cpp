#include "platform/qt/check/Screenshots.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QPalette>
#include <QPixmap>
#include <QStyle>
#include <QWidget>

#include "platform/forms/Form.h"
#include "platform/qt/QtText.h"
#include "platform/qt/QtWindows.h"

namespace mailvane {

bool SaveScreenshot(QtWindows& windows, Form& form, const std::string& path) {
    QWidget* content = windows.WindowOf(form);
    if (!content) return false;
    const bool wasVisible = form.Visible();
    if (!wasVisible) windows.ShowForm(form);
    windows.PumpEvents();
    const QString file = ToQt(path);
    QDir().mkpath(QFileInfo(file).absolutePath());
    const bool saved = content->grab().save(file, "PNG");
    if (!wasVisible) windows.HideForm(form);
    return saved;
}

void UseDarkPalette(bool dark) {
    if (!dark) {
        QApplication::setPalette(QApplication::style()->standardPalette());
        return;
    }
    const QColor window(0x2a, 0x2e, 0x32);
    const QColor base(0x1b, 0x1e, 0x20);
    const QColor text(0xfc, 0xfc, 0xfc);
    QPalette palette(window, window);
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::AlternateBase, window);
    palette.setColor(QPalette::ToolTipBase, base);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText,
                            QPalette::ToolTipText, QPalette::BrightText})
        palette.setColor(role, text);
    palette.setColor(QPalette::Highlight, QColor(0x3d, 0xae, 0xe9));
    palette.setColor(QPalette::HighlightedText, text);
    palette.setColor(QPalette::Link, QColor(0x1d, 0x99, 0xf3));
    palette.setColor(QPalette::PlaceholderText, QColor(0xa1, 0xa9, 0xb1));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x80, 0x86, 0x8c));
    QApplication::setPalette(palette);
}

}  // namespace mailvane
