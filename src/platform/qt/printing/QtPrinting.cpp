#include "platform/qt/printing/QtPrinting.h"

#include <QPageSetupDialog>
#include <QPainter>
#include <QPdfWriter>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QSaveFile>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "platform/qt/printing/PrintPreview.h"
#include "platform/qt/printing/TablePages.h"

namespace mailvane {

namespace {

using Result = PrintOutcome::Result;

constexpr int PdfResolution = 600;  ///< dots an inch

PrintOutcome Failure(const QString& reason) {
    return {Result::Failed, FromQt(reason)};
}

/// The pages from one to another, counted from 0, on a device that stands on its first page.
PrintOutcome DrawPages(QPagedPaintDevice& device, const PrintJob& job, const TablePages& pages,
                       std::size_t first, std::size_t last) {
    QPainter painter;
    if (!painter.begin(&device))
        return Failure(QStringLiteral("The printer does not take the pages."));
    for (std::size_t page = first; page <= last; ++page) {
        if (page > first && !device.newPage())
            return Failure(QStringLiteral("The printer takes no more pages."));
        pages.Draw(painter, page);
        if (job.progress && !job.progress(page + 1, pages.Count())) return {Result::Cancelled};
    }
    if (!painter.end()) return Failure(QStringLiteral("The print could not be finished."));
    return {Result::Printed};
}

/// The file is there when it is whole.
PrintOutcome WritePdf(const PrintJob& job, const QPageLayout& layout, const QString& path) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly)) return Failure(file.errorString());
    {
        QPdfWriter writer(&file);
        writer.setResolution(PdfResolution);
        writer.setPageLayout(layout);
        writer.setTitle(ToQt(job.title));
        const TablePages pages(job, layout.paintRectPixels(PdfResolution).size(), PdfResolution);
        PrintOutcome outcome = DrawPages(writer, job, pages, 0, pages.Count() - 1);
        if (outcome.result != Result::Printed) return outcome;
    }
    if (!file.commit()) return Failure(file.errorString());
    return {Result::Printed};
}

PrintOutcome PrintOn(QPrinter& printer, const PrintJob& job) {
    const int resolution = printer.resolution();
    const TablePages pages(job, printer.pageLayout().paintRectPixels(resolution).size(),
                           resolution);
    std::size_t first = 0;
    std::size_t last = pages.Count() - 1;
    if (printer.printRange() == QPrinter::PageRange && printer.fromPage() > 0) {
        first = std::min(static_cast<std::size_t>(printer.fromPage() - 1), last);
        last = std::clamp(static_cast<std::size_t>(std::max(printer.toPage(), 1) - 1), first, last);
    }
    PrintOutcome outcome = DrawPages(printer, job, pages, first, last);
    if (outcome.result != Result::Printed) printer.abort();
    return outcome;
}

bool Accepts(const PrintDesk& desk, QDialog& dialog) {
    desk.loop(dialog);
    return dialog.result() == QDialog::Accepted;
}

bool AskBefore(const PrintDesk& desk, const PrintJob& job, QPrinter& printer) {
    if (job.pageSetup) {
        QPageSetupDialog dialog(&printer, desk.parent);
        if (!Accepts(desk, dialog)) return false;
    }
    if (job.preview) {
        PrintPreview dialog(desk.parent, job, printer.pageLayout());
        if (!Accepts(desk, dialog)) return false;
    }
    if (job.printDialog) {
        QPrintDialog dialog(&printer, desk.parent);
        if (!Accepts(desk, dialog)) return false;
    }
    return true;
}

}  // namespace

PrintOutcome PrintTableWith(const PrintDesk& desk, const PrintJob& job) {
    QPrinter printer(QPrinter::HighResolution);
    printer.setDocName(ToQt(job.title));
    const bool hasPrinter = !QPrinterInfo::availablePrinters().isEmpty();
    if (!hasPrinter) printer.setOutputFormat(QPrinter::PdfFormat);
    if (!AskBefore(desk, job, printer)) return {Result::Cancelled};
    QString file = job.pdfFile.empty() ? printer.outputFileName() : ToQt(job.pdfFile);
    const bool toFile = printer.outputFormat() == QPrinter::PdfFormat || !job.pdfFile.empty();
    if (!toFile) return PrintOn(printer, job);
    if (file.isEmpty()) file = ToQt(desk.askPdfFile());
    return file.isEmpty() ? PrintOutcome{Result::Cancelled}
                          : WritePdf(job, printer.pageLayout(), file);
}

}  // namespace mailvane
