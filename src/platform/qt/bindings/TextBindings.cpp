#include <QDropEvent>
#include <QFontDialog>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

namespace {

constexpr int LongestLine = 1 << 24;

bool IsEnterKey(const QEvent& event) {
    if (event.type() != QEvent::KeyPress) return false;
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

int KeyCode(const QKeyEvent& event) {
    constexpr int NoCharacter = 0;
    constexpr int BackspaceCode = 8;
    constexpr int OtherCharacter = 0xFF;
    const int key = event.key();
    if (key == Qt::Key_Backspace) return BackspaceCode;
    if (key >= Qt::Key_Escape) return NoCharacter;  // from there on no key writes
    const bool hasCode = key == Qt::Key_Space || (key >= Qt::Key_0 && key <= Qt::Key_9) ||
                         (key >= Qt::Key_A && key <= Qt::Key_Z);
    return hasCode ? key : OtherCharacter;
}

/// Tells the control of a key let go. The binding may be gone afterwards.
void TellKeyUp(const EditControl& control, const QEvent& event) {
    if (event.type() != QEvent::KeyRelease || !control.onKeyUp) return;
    const auto& key = static_cast<const QKeyEvent&>(event);
    if (!key.isAutoRepeat()) RunHandler(control.onKeyUp, KeyCode(key));
}

/// An entry dragged from a list takes the place of what is selected. Where nothing is, the widget
/// itself inserts it under the mouse, and all other drags are its own business too.
bool DropEntry(EditControl& control, QEvent& event) {
    const auto type = event.type();
    if (type != QEvent::DragEnter && type != QEvent::DragMove && type != QEvent::Drop) return false;
    auto& drop = static_cast<QDropEvent&>(event);
    if (!qobject_cast<QListWidget*>(drop.source()) || control.SelectionLength() == 0) return false;
    drop.setDropAction(Qt::CopyAction);
    drop.accept();
    if (type == QEvent::Drop) control.ReplaceSelection(FromWidgetText(drop.mimeData()->text()));
    return true;
}

/// What all editing widgets can do by themselves; false for the formats.
template <class Edit>
bool DoOnClipboard(Edit& edit, EditCommand command) {
    switch (command) {
        case EditCommand::Undo:
            edit.undo();
            return true;
        case EditCommand::Cut:
            edit.cut();
            return true;
        case EditCommand::Copy:
            edit.copy();
            return true;
        case EditCommand::Paste:
            edit.paste();
            return true;
        default:
            return false;
    }
}

class LineBinding final : public ControlBinding {
public:
    LineBinding(EditControl& control, QLineEdit& edit)
        : ControlBinding(control, edit), control_(control), edit_(edit) {
        edit.setMaxLength(LongestLine);
        connect(&edit, &QLineEdit::textChanged, this, [this](const QString& text) {
            const QPointer<ControlBinding> self(this);
            FromUser(Property::Text, [&] { control_.SetText(FromWidgetText(text)); });
            if (self) ReadSelection();
        });
        connect(&edit, &QLineEdit::selectionChanged, this, [this] { ReadSelection(); });
        connect(&edit, &QLineEdit::cursorPositionChanged, this, [this] { ReadSelection(); });
        commands_ = control.commanded.Observe([this](EditCommand command) { Do(command); });
    }

private:
    void Show(Property property) override {
        if (property == Property::Text) {
            const QString text = ToWidgetText(control_.Text());
            if (text == edit_.text()) return;
            edit_.setText(text);
            ShowSelection();
        } else if (property == Property::TextSelection && !reading_) {
            ShowSelection();
        }
    }

    void ShowSelection() {
        const int start = ToWidgetPosition(control_.Text(), control_.SelectionStart());
        const int end = ToWidgetPosition(control_.Text(),
                                         control_.SelectionStart() + control_.SelectionLength());
        if (end > start) {
            edit_.setSelection(start, end - start);
        } else {
            edit_.setCursorPosition(start);
        }
    }

    void ReadSelection() {
        if (Showing() || ToWidgetText(control_.Text()) != edit_.text()) return;
        const int start = edit_.hasSelectedText() ? edit_.selectionStart() : edit_.cursorPosition();
        const std::size_t first = FromWidgetPosition(control_.Text(), start);
        const std::size_t end =
            FromWidgetPosition(control_.Text(), start + static_cast<int>(edit_.selectionLength()));
        // Shown back, a selection made from right to left would turn round.
        reading_ = true;
        control_.Select(first, end - first);
        reading_ = false;
    }

    void Do(EditCommand command) {
        DoOnClipboard(edit_, command);  // one line has no formats
    }

    bool Filter(QObject* watched, QEvent* event) override {
        if (watched != &edit_) return false;
        if (DropEntry(control_, *event)) return true;
        if (control_.onEnter && IsEnterKey(*event)) {
            RunHandler(control_.onEnter);
            return true;
        }
        TellKeyUp(control_, *event);
        return false;
    }

    EditControl& control_;
    QLineEdit& edit_;
    bool reading_ = false;
    Subscription commands_;
};

void ApplyFormat(QPlainTextEdit&, EditCommand) {}  // a plain text has no formats

void ApplyFormat(QTextEdit& edit, EditCommand command) {
    QTextCharFormat format;
    if (command == EditCommand::Bold) {
        const bool bold = edit.fontWeight() > QFont::Normal;
        format.setFontWeight(bold ? QFont::Normal : QFont::Bold);
    } else if (command == EditCommand::Italic) {
        format.setFontItalic(!edit.fontItalic());
    } else if (command == EditCommand::Underline) {
        format.setFontUnderline(!edit.fontUnderline());
    } else if (command == EditCommand::ChooseFont) {
        bool chosen = false;
        const QFont font = QFontDialog::getFont(&chosen, edit.currentFont(), &edit);
        if (!chosen) return;
        format.setFont(font);
    }
    edit.mergeCurrentCharFormat(format);
}

QString DocumentText(const QTextDocument& document) {
    QString text = document.toRawText();
    for (const char16_t end : {u'\u2028', u'\u2029', u'\ufdd0', u'\ufdd1'})
        text.replace(QChar(end), QLatin1Char('\n'));
    return text;
}

/// A line without an end takes the widget minutes to lay out. What is only read is broken.
QString WithShorterLines(const QString& text) {
    constexpr int Longest = 10000;
    QString broken;
    int length = 0;
    for (const QChar sign : text) {
        length = sign == QLatin1Char('\n') ? 0 : length + 1;
        // Not between the two halves of one letter.
        if (length > Longest && !sign.isLowSurrogate()) {
            broken += QLatin1Char('\n');
            length = 1;
        }
        broken += sign;
    }
    return broken;
}

/// Several lines; `Edit` is QPlainTextEdit or QTextEdit.
template <class Edit>
class DocumentBinding : public ControlBinding {
public:
    DocumentBinding(EditControl& control, Edit& edit)
        : ControlBinding(control, edit), control_(control), edit_(edit) {
        connect(&edit, &Edit::textChanged, this, [this] {
            if (Showing()) return;
            const QString text = DocumentText(*edit_.document());
            if (text == ToWidgetText(control_.Text())) return;  // only a format has changed
            const QPointer<ControlBinding> self(this);
            FromUser(Property::Text, [&] { control_.SetText(FromWidgetText(text)); });
            if (self) ReadSelection();
        });
        connect(&edit, &Edit::selectionChanged, this, [this] { ReadSelection(); });
        connect(&edit, &Edit::cursorPositionChanged, this, [this] { ReadSelection(); });
        commands_ = control.commanded.Observe([this](EditCommand command) { Do(command); });
        edit.viewport()->installEventFilter(this);
    }

private:
    void Show(Property property) override {
        if (property == Property::Text) {
            QString text = ToWidgetText(control_.Text());
            if (edit_.isReadOnly()) text = WithShorterLines(text);
            if (text == DocumentText(*edit_.document())) return;
            ShowText(text);
            ShowSelection();
        } else if (property == Property::TextSelection && !reading_) {
            ShowSelection();
        }
    }

    /// Replaces only what differs, so that formats, scroll place and undo list stay.
    void ShowText(const QString& text) {
        const QString old = DocumentText(*edit_.document());
        const auto [oldHead, newHead] =
            std::mismatch(old.begin(), old.end(), text.begin(), text.end());
        const auto head = static_cast<int>(oldHead - old.begin());
        const auto shorter = static_cast<int>(std::min(old.size(), text.size()));
        int tail = 0;
        while (tail < shorter - head &&
               old.at(old.size() - 1 - tail) == text.at(text.size() - 1 - tail))
            ++tail;
        if (head == 0 && tail == 0) {
            // Another text does not take over the looks of the one before.
            if (!old.isEmpty()) edit_.setCurrentCharFormat(QTextCharFormat());
            edit_.setPlainText(text);
            return;
        }
        QTextCursor cursor(edit_.document());
        cursor.setPosition(head);
        cursor.setPosition(static_cast<int>(old.size()) - tail, QTextCursor::KeepAnchor);
        cursor.insertText(text.mid(head, text.size() - head - tail));
    }

    void ShowSelection() {
        QTextCursor cursor = edit_.textCursor();
        const int start = ToWidgetPosition(control_.Text(), control_.SelectionStart());
        const int end = ToWidgetPosition(control_.Text(),
                                         control_.SelectionStart() + control_.SelectionLength());
        const int last = edit_.document()->characterCount() - 1;
        cursor.setPosition(std::min(start, last));
        cursor.setPosition(std::min(end, last), QTextCursor::KeepAnchor);
        edit_.setTextCursor(cursor);
    }

    void ReadSelection() {
        // Before textChanged has come through, places in the widget mean nothing to the control.
        if (Showing() || ToWidgetText(control_.Text()) != DocumentText(*edit_.document())) return;
        const QTextCursor cursor = edit_.textCursor();
        const std::size_t first = FromWidgetPosition(control_.Text(), cursor.selectionStart());
        const std::size_t end = FromWidgetPosition(control_.Text(), cursor.selectionEnd());
        // Shown back, a selection made from right to left would turn round.
        reading_ = true;
        control_.Select(first, end - first);
        reading_ = false;
    }

    void Do(EditCommand command) {
        if (!DoOnClipboard(edit_, command)) ApplyFormat(edit_, command);
    }

    bool Filter(QObject* watched, QEvent* event) override {
        if (watched == edit_.viewport()) return DropEntry(control_, *event);
        if (watched != &edit_) return false;
        if (IsEnterKey(*event))
            RunHandler(control_.onEnter);
        else
            TellKeyUp(control_, *event);
        return false;
    }

    EditControl& control_;
    Edit& edit_;
    bool reading_ = false;
    Subscription commands_;
};

class RichBinding final : public DocumentBinding<QTextEdit> {
public:
    RichBinding(RichTextBox& control, QTextEdit& edit) : DocumentBinding(control, edit) {
        sizes_ = control.fontSized.Observe([&edit](int points) {
            QTextCharFormat format;
            format.setFontPointSize(points);
            edit.mergeCurrentCharFormat(format);
        });
    }

private:
    Subscription sizes_;
};

class CaptionBinding final : public ControlBinding {
public:
    CaptionBinding(TextControl& control, QWidget& widget)
        : ControlBinding(control, widget),
          control_(control),
          label_(qobject_cast<QLabel*>(&widget)),
          group_(qobject_cast<QGroupBox*>(&widget)) {
        if (label_) label_->setTextFormat(Qt::PlainText);
        if (group_) design_ = group_->title();
    }

private:
    void Show(Property property) override {
        if (property != Property::Text) return;
        const QString text = ToWidgetText(control_.Text());
        if (label_ && (Started() || !text.isEmpty())) label_->setText(text);
        if (group_) group_->setTitle(text.isEmpty() ? design_ : text);
    }

    TextControl& control_;
    QLabel* label_;
    QGroupBox* group_;
    QString design_;
};

}  // namespace

BindingPointer BindText(EditControl& control, QWidget& widget) {
    if (auto* line = qobject_cast<QLineEdit*>(&widget))
        return std::make_unique<LineBinding>(control, *line);
    if (auto* plain = qobject_cast<QPlainTextEdit*>(&widget))
        return std::make_unique<DocumentBinding<QPlainTextEdit>>(control, *plain);
    auto& rich = *qobject_cast<QTextEdit*>(&widget);
    rich.setAcceptRichText(false);
    return std::make_unique<RichBinding>(static_cast<RichTextBox&>(control), rich);
}

BindingPointer BindCaption(TextControl& control, QWidget& widget) {
    return std::make_unique<CaptionBinding>(control, widget);
}

}  // namespace mailvane
