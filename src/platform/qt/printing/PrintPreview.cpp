#include "platform/qt/printing/PrintPreview.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>
#include <algorithm>
#include <limits>

#include "platform/qt/QtText.h"
#include "platform/qt/printing/TablePages.h"

namespace mailvane {

namespace {

constexpr int Resolution = 600;  ///< dots an inch, as in a PDF file: the same rows on a page
constexpr QSize FirstSize(640, 760);
constexpr QSize LeastSheet(240, 300);

}  // namespace

PrintPreview::PrintPreview(QWidget* parent, const PrintJob& job, const QPageLayout& layout)
    : QDialog(parent),
      pages_(
          std::make_unique<TablePages>(job, layout.paintRectPixels(Resolution).size(), Resolution)),
      layout_(layout),
      sheet_(new QLabel),
      number_(new QSpinBox) {
    setWindowTitle(QStringLiteral("Preview: %1").arg(ToQt(job.title)));
    resize(FirstSize);
    sheet_->setAlignment(Qt::AlignCenter);
    sheet_->setMinimumSize(LeastSheet);
    sheet_->setAccessibleName(QStringLiteral("Page"));
    const std::size_t most = static_cast<std::size_t>(std::numeric_limits<int>::max());
    const int count = static_cast<int>(std::min(pages_->Count(), most));
    number_->setRange(1, count);
    auto* caption = new QLabel(QStringLiteral("P&age:"));
    caption->setBuddy(number_);
    auto* buttons = new QDialogButtonBox;
    buttons->addButton(QStringLiteral("&Print"), QDialogButtonBox::AcceptRole)->setDefault(true);
    buttons->addButton(QStringLiteral("&Close"), QDialogButtonBox::RejectRole);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(number_, &QSpinBox::valueChanged, this, [this] { ShowPage(); });

    auto* line = new QHBoxLayout;
    line->addWidget(caption);
    line->addWidget(number_);
    line->addWidget(new QLabel(QStringLiteral("of %1").arg(count)));
    line->addStretch();
    line->addWidget(buttons);
    auto* all = new QVBoxLayout(this);
    all->addWidget(sheet_, 1);
    all->addLayout(line);
}

PrintPreview::~PrintPreview() = default;

void PrintPreview::resizeEvent(QResizeEvent*) {
    ShowPage();
}

/// Only the page that is seen is ever made.
void PrintPreview::ShowPage() {
    const QSizeF paper = layout_.fullRectPixels(Resolution).size();
    const QRectF inside = layout_.paintRectPixels(Resolution);
    const double sharpness = devicePixelRatioF();
    const QSizeF room = QSizeF(sheet_->size()) * sharpness;
    const double scale = std::min(room.width() / paper.width(), room.height() / paper.height());
    QPixmap picture((paper * scale).toSize().expandedTo(QSize(1, 1)));
    picture.fill(Qt::white);
    QPainter painter(&picture);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    painter.scale(scale, scale);
    painter.translate(inside.topLeft());
    pages_->Draw(painter, static_cast<std::size_t>(number_->value() - 1));
    painter.end();
    picture.setDevicePixelRatio(sharpness);
    sheet_->setPixmap(picture);
}

}  // namespace mailvane
