#include "platform/qt/QtText.h"

#include <QTextDocument>
#include <algorithm>

namespace mailvane {

namespace {

struct Step {
    std::size_t bytes;
    int units;
};

/// How far one character, or one CR LF, goes on both sides.
Step StepAt(const std::string& text, std::size_t at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead == '\r' && at + 1 < text.size() && text[at + 1] == '\n') return {2, 1};
    if (lead >= 0xF0) return {4, 2};
    if (lead >= 0xE0) return {3, 1};
    if (lead >= 0xC0) return {2, 1};
    return {1, 1};
}

}  // namespace

QString ToQt(const std::string& text) {
    return QString::fromStdString(text);
}

std::string FromQt(const QString& text) {
    return text.toStdString();
}

QString ToWidgetText(const std::string& text) {
    QString shown = ToQt(text);
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    shown.replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return shown;
}

std::string FromWidgetText(const QString& text) {
    QString lines = text;
    lines.replace(QLatin1Char('\n'), QStringLiteral("\r\n"));
    return FromQt(lines);
}

int ToWidgetPosition(const std::string& text, std::size_t position) {
    int units = 0;
    for (std::size_t at = 0; at < std::min(position, text.size());) {
        const Step step = StepAt(text, at);
        at += step.bytes;
        units += step.units;
    }
    return units;
}

std::size_t FromWidgetPosition(const std::string& text, int position) {
    std::size_t at = 0;
    for (int units = 0; at < text.size() && units < position;) {
        const Step step = StepAt(text, at);
        at += step.bytes;
        units += step.units;
    }
    return std::min(at, text.size());
}

QString PlainToolTip(const std::string& text) {
    const QString tip = ToQt(text);
    return Qt::mightBeRichText(tip) ? tip.toHtmlEscaped() : tip;
}

}  // namespace mailvane
