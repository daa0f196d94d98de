#include <QImage>
#include <QPainter>
#include <QPointer>
#include <QTextBrowser>
#include <QTextDocument>
#include <QUrl>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"
#include "platform/qt/bindings/HtmlNesting.h"

namespace mailvane {

namespace {

/// An outlined square: something stands here that is not loaded.
QImage BlockedImage() {
    constexpr int Side = 24;
    QImage image(Side, Side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::gray);
    painter.drawRect(0, 0, Side - 1, Side - 1);
    painter.drawLine(0, 0, Side - 1, Side - 1);
    painter.drawLine(0, Side - 1, Side - 1, 0);
    return image;
}

/// Loads nothing but what the code holds itself.
class SealedDocument final : public QTextDocument {
public:
    using QTextDocument::QTextDocument;

protected:
    QVariant loadResource(int type, const QUrl& name) override {
        if (name.scheme() == QStringLiteral("data")) return QTextDocument::loadResource(type, name);
        // An image that is not there would be looked for on the disk.
        return type == ImageResource ? QVariant(BlockedImage()) : QVariant(QByteArray());
    }
};

class HtmlBinding final : public ControlBinding {
public:
    HtmlBinding(HtmlView& control, QTextBrowser& browser)
        : ControlBinding(control, browser), control_(control), browser_(browser) {
        browser.setOpenLinks(false);
        // Such texts are written for white paper.
        QPalette paper = browser.palette();
        paper.setColor(QPalette::Base, Qt::white);
        paper.setColor(QPalette::Text, Qt::black);
        paper.setColor(QPalette::Link, Qt::blue);
        browser.setPalette(paper);
    }

private:
    /// In a new document: what one text holds or hides is no business of the next.
    void Show(Property property) override {
        if (property != Property::Text) return;
        auto* document = new SealedDocument(&browser_);
        document->setDefaultFont(browser_.font());
        document->setHtml(BoundNesting(ToQt(control_.Text())));
        browser_.setDocument(document);
        delete document_;
        document_ = document;
    }

    HtmlView& control_;
    QTextBrowser& browser_;
    QPointer<SealedDocument> document_;
};

}  // namespace

BindingPointer BindHtml(HtmlView& control, QWidget& widget) {
    return std::make_unique<HtmlBinding>(control, *qobject_cast<QTextBrowser*>(&widget));
}

}  // namespace mailvane
