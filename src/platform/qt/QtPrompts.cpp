#include "platform/qt/QtPrompts.h"

#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QMessageBox>
#include <QStringList>

#include "platform/qt/QtText.h"

namespace mailvane {

namespace {

QMessageBox::Icon IconOf(BoxIcon icon) {
    switch (icon) {
        case BoxIcon::None:
            return QMessageBox::NoIcon;
        case BoxIcon::Information:
            return QMessageBox::Information;
        case BoxIcon::Question:
            return QMessageBox::Question;
        case BoxIcon::Exclamation:
            return QMessageBox::Warning;
        case BoxIcon::Critical:
            return QMessageBox::Critical;
    }
    return QMessageBox::NoIcon;
}

QMessageBox::StandardButton ButtonOf(BoxAnswer answer) {
    switch (answer) {
        case BoxAnswer::Ok:
            return QMessageBox::Ok;
        case BoxAnswer::Cancel:
            return QMessageBox::Cancel;
        case BoxAnswer::Yes:
            return QMessageBox::Yes;
        case BoxAnswer::No:
            return QMessageBox::No;
    }
    return QMessageBox::Ok;
}

constexpr BoxAnswer AllAnswers[] = {BoxAnswer::Ok, BoxAnswer::Yes, BoxAnswer::No,
                                    BoxAnswer::Cancel};

}  // namespace

BoxAnswer AskMessageBoxWith(const DialogLoop& loop, QWidget* parent, const BoxRequest& request) {
    QMessageBox box(parent);
    box.setTextFormat(Qt::PlainText);
    box.setWindowTitle(ToQt(request.title));
    box.setText(ToWidgetText(request.text));
    box.setIcon(IconOf(request.icon));
    for (const BoxAnswer answer : AllAnswers)
        if (request.Offers(answer)) box.addButton(ButtonOf(answer));
    box.setDefaultButton(ButtonOf(request.DefaultAnswer()));
    box.setEscapeButton(ButtonOf(request.CloseAnswer()));
    loop(box);
    for (const BoxAnswer answer : AllAnswers)
        if (box.clickedButton() && box.clickedButton() == box.button(ButtonOf(answer)))
            return answer;
    return request.CloseAnswer();
}

std::optional<std::string> AskInputWith(const DialogLoop& loop, QWidget* parent,
                                        const InputRequest& request) {
    QInputDialog dialog(parent);
    dialog.setInputMode(QInputDialog::TextInput);
    dialog.setWindowTitle(ToQt(request.title));
    dialog.setLabelText(ToWidgetText(request.prompt));
    dialog.setTextValue(ToQt(request.text));
    for (QLabel* label : dialog.findChildren<QLabel*>())
        label->setTextFormat(Qt::PlainText);
    loop(dialog);
    if (dialog.result() != QDialog::Accepted) return std::nullopt;
    return FromQt(dialog.textValue());
}

std::optional<std::string> AskFileWith(const DialogLoop& loop, QWidget* parent,
                                       const FileRequest& request) {
    QFileDialog dialog(parent, ToQt(request.title), ToQt(request.startFolder));
    dialog.setAcceptMode(request.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
    dialog.setFileMode(request.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    QStringList filters;
    for (const FileFilter& filter : request.filters)
        filters << QStringLiteral("%1 (%2)").arg(ToQt(filter.description), ToQt(filter.pattern));
    if (!filters.isEmpty()) dialog.setNameFilters(filters);
    if (request.filterIndex >= 0 && request.filterIndex < filters.size())
        dialog.selectNameFilter(filters[request.filterIndex]);
    // The dialog asks before it gives the name of a file that is there, so it has to know it whole.
    if (request.save) dialog.setDefaultSuffix(ToQt(request.defaultExtension));
    loop(dialog);
    const QStringList chosen = dialog.selectedFiles();
    if (dialog.result() != QDialog::Accepted || chosen.isEmpty()) return std::nullopt;
    return FromQt(chosen.first());
}

}  // namespace mailvane
