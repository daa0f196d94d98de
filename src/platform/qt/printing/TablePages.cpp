#include "platform/qt/printing/TablePages.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

constexpr double PointsAnInch = 72;
constexpr double TwipsAnInch = 1440;
constexpr double FontPoints = 9;
constexpr double PaddingPoints = 3;
constexpr qsizetype LongestCell = 300;  ///< more is never seen in one line
const QColor HeadColor(0xD6, 0xE4, 0xF2);
const QColor EveryOtherColor(0xF3, 0xF6, 0xFA);

}  // namespace

TablePages::TablePages(const PrintJob& job, const QSizeF& page, double dotsAnInch)
    : job_(job), page_(page), font_(QApplication::font()), dot_(dotsAnInch / PointsAnInch) {
    // In dots, so that a page looks the same on paper and, made smaller, on the screen.
    font_.setPixelSize(std::max(1, static_cast<int>(std::lround(FontPoints * dot_))));
    lineHeight_ = QFontMetricsF(font_).height() + PaddingPoints * dot_;
    for (const PrintColumn& column : job_.columns)
        widths_.push_back(std::min(column.width / TwipsAnInch * dotsAnInch, page_.width()));
    MakeBands();
    const double heads = 1 + (job_.header.empty() ? 0 : 2) + (job_.footer.empty() ? 0 : 2);
    const double rows = std::floor(page_.height() / lineHeight_ - heads);
    rowsAPage_ = rows > 1 ? static_cast<std::size_t>(rows) : 1;
    rowPages_ = std::max<std::size_t>(1, (job_.rowCount + rowsAPage_ - 1) / rowsAPage_);
}

void TablePages::MakeBands() {
    double used = page_.width() + 1;
    for (std::size_t i = 0; i < widths_.size(); ++i) {
        if (used + widths_[i] > page_.width()) {
            bands_.push_back({i, 0});
            used = 0;
        }
        ++bands_.back().count;
        used += widths_[i];
    }
    if (bands_.empty()) bands_.push_back({});
}

void TablePages::Draw(QPainter& painter, std::size_t page) const {
    const Band& band = bands_[page % bands_.size()];
    const std::size_t first = page / bands_.size() * rowsAPage_;
    painter.setPen(QPen(Qt::black, dot_ / 2));
    double top = 0;
    DrawLine(painter, job_.header, top, page);
    if (!job_.header.empty()) top += 2 * lineHeight_;
    std::vector<std::string> captions;
    for (const PrintColumn& column : job_.columns)
        captions.push_back(column.caption);
    QFont bold = font_;
    bold.setBold(true);
    painter.setFont(bold);
    if (job_.colors) Fill(painter, band, top, HeadColor);
    DrawRow(painter, band, captions, top,
            job_.lines == PrintLines::ColumnHeaders || job_.lines == PrintLines::All);
    painter.setFont(font_);
    const std::size_t count = std::min(rowsAPage_, job_.rowCount - std::min(first, job_.rowCount));
    bool shaded = false;
    for (const std::vector<std::string>& row : job_.readRows(first, count)) {
        top += lineHeight_;
        if (job_.colors && shaded) Fill(painter, band, top, EveryOtherColor);
        shaded = !shaded;
        DrawRow(painter, band, row, top,
                job_.lines == PrintLines::Rows || job_.lines == PrintLines::All);
    }
    DrawLine(painter, job_.footer, page_.height() - lineHeight_, page);
}

void TablePages::DrawLine(QPainter& painter, const std::string& text, double top,
                          std::size_t page) const {
    QString line = ToQt(text);
    line.replace(ToQt(std::string(PageNumberMark)), QString::number(page + 1));
    painter.setFont(font_);
    painter.drawText(QRectF(0, top, page_.width(), lineHeight_), Qt::AlignCenter, line);
}

void TablePages::DrawRow(QPainter& painter, const Band& band, const std::vector<std::string>& texts,
                         double top, bool borders) const {
    const QFontMetricsF metrics(painter.font());
    const double padding = PaddingPoints * dot_;
    double left = 0;
    for (std::size_t i = band.first; i < band.first + band.count; ++i) {
        const QRectF cell(left, top, widths_[i], lineHeight_);
        left += widths_[i];
        if (borders) painter.drawRect(cell);
        if (i >= texts.size()) continue;
        const QString text = metrics.elidedText(ToQt(texts[i]).left(LongestCell).simplified(),
                                                Qt::ElideRight, cell.width() - 2 * padding);
        painter.drawText(cell.adjusted(padding, 0, -padding, 0), Qt::AlignVCenter, text);
    }
}

void TablePages::Fill(QPainter& painter, const Band& band, double top, const QColor& color) const {
    double width = 0;
    for (std::size_t i = band.first; i < band.first + band.count; ++i)
        width += widths_[i];
    painter.fillRect(QRectF(0, top, width, lineHeight_), color);
}

}  // namespace mailvane
