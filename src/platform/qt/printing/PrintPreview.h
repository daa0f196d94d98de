#pragma once

#include <QDialog>
#include <QPageLayout>
#include <cstddef>

#include "platform/forms/Printing.h"

class QLabel;
class QPushButton;
class QScrollArea;
class QSpinBox;

namespace mailvane {

class TablePages;

/// Shows the pages of a print one at a time. Accepted: the user wants them printed.
class PrintPreview final : public QDialog {
public:
    PrintPreview(QWidget* parent, const PrintJob& job, const QPageLayout& layout);
    ~PrintPreview() override;

private:
    void ShowPage();
    void resizeEvent(QResizeEvent* event) override;

    std::unique_ptr<TablePages> pages_;
    QPageLayout layout_;
    QLabel* sheet_;
    QSpinBox* number_;
};

}  // namespace mailvane
