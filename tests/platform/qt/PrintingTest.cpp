#include <QDialog>
#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QPixmap>
#include <QSpinBox>

#include "platform/os/Files.h"
#include "platform/qt/QtTest.h"
#include "platform/qt/printing/QtPrinting.h"
#include "platform/qt/printing/TablePages.h"
#include "support/TempFolder.h"

namespace mailvane {
namespace {

class Printing : public QtTest {
protected:
    /// A table of three columns; rows are made as they are asked for.
    PrintJob TableOf(std::size_t rows) {
        PrintJob job;
        job.title = "People";
        job.columns = {{"Email", 3000}, {"Name", 3000}, {"Age", 900}};
        job.rowCount = rows;
        job.readRows = [this](std::size_t first, std::size_t count) {
            most = std::max(most, count);
            std::vector<std::vector<std::string>> some;
            for (std::size_t i = first; i < first + count; ++i)
                some.push_back({"a" + std::to_string(i) + "@x.com", "A\r\nname", "31"});
            lastRow = first + count;
            return some;
        };
        job.header = "Page " + std::string(PageNumberMark);
        job.pdfFile = folder.File("out.pdf");
        job.progress = [this](std::size_t page, std::size_t all) {
            EXPECT_LE(page, all);
            pages = page;
            return page < stopAt;
        };
        return job;
    }

    std::size_t PagesInFile() {
        const std::string pdf = ReadWholeFile(folder.File("out.pdf")).value_or("");
        std::size_t count = 0;
        for (std::size_t at = 0; (at = pdf.find("/Type /Page\n", at)) != std::string::npos; ++at)
            ++count;
        return count;
    }

    PrintOutcome Print(const PrintJob& job) { return PrintTableWith(desk, job); }

    test::TempFolder folder;
    PrintDesk desk{[](QDialog&) { ADD_FAILURE() << "a dialog"; }, nullptr,
                   [] { return std::string(); }};
    std::size_t most = 0;
    std::size_t lastRow = 0;
    std::size_t pages = 0;
    std::size_t stopAt = 1'000'000;
};

TEST_F(Printing, WritesEveryPageAndReadsOneAtATime) {
    const PrintJob job = TableOf(20'000);
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Printed);
    EXPECT_EQ(lastRow, 20'000u);
    EXPECT_GT(most, 20u);
    EXPECT_LT(most, 100u);
    EXPECT_EQ(pages, (20'000 + most - 1) / most);
    EXPECT_EQ(PagesInFile(), pages);
}

TEST_F(Printing, WideTablesTakeSeveralPagesAcross) {
    PrintJob job = TableOf(1);
    for (int i = 0; i < 10; ++i)
        job.columns.push_back({"More", 2880});
    job.columns.push_back({"Wider than the paper", 1e6});
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Printed);
    EXPECT_GE(PagesInFile(), 5u);
    EXPECT_EQ(PagesInFile(), pages);
}

TEST_F(Printing, AnEmptyTablePrintsItsHeads) {
    PrintJob job = TableOf(0);
    job.progress = nullptr;
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Printed);
    job.columns.clear();
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Printed);
    EXPECT_EQ(PagesInFile(), 1u);
}

TEST_F(Printing, AFileIsThereOnlyWhenItIsWhole) {
    stopAt = 2;
    EXPECT_EQ(Print(TableOf(1000)).result, PrintOutcome::Result::Cancelled);
    EXPECT_FALSE(IsFile(folder.File("out.pdf")));
    PrintJob job = TableOf(1);
    job.pdfFile = folder.File("no/folder/out.pdf");
    const PrintOutcome outcome = Print(job);
    EXPECT_EQ(outcome.result, PrintOutcome::Result::Failed);
    EXPECT_NE(outcome.reason, "");
    job.pdfFile = "";
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Cancelled)
        << "no printer, and no file named";
    desk.askPdfFile = [this] { return folder.File("out.pdf"); };
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Printed);
    EXPECT_EQ(PagesInFile(), 1u);
}

TEST_F(Printing, PreviewShowsOnePageAtATime) {
    PrintJob job = TableOf(1'000'000);
    job.preview = true;
    bool print = false;
    desk.loop = [&](QDialog& dialog) {
        dialog.show();
        auto* number = dialog.findChild<QSpinBox*>();
        ASSERT_NE(number, nullptr);
        EXPECT_GT(number->maximum(), 10'000);
        EXPECT_EQ(number->value(), 1);
        number->setValue(number->maximum());
        EXPECT_EQ(lastRow, 1'000'000u);
        EXPECT_LT(most, 100u);
        EXPECT_FALSE(dialog.findChild<QLabel*>()->pixmap().isNull());
        dialog.grab().save(QStringLiteral(MAILVANE_BUILD_DIR "/screenshots/PrintPreview.png"));
        print ? dialog.accept() : dialog.reject();
    };
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Cancelled);
    EXPECT_FALSE(IsFile(folder.File("out.pdf")));
    print = true;
    stopAt = 3;
    EXPECT_EQ(Print(job).result, PrintOutcome::Result::Cancelled);
    EXPECT_EQ(pages, 3u);
}

/// How many pixels of a page are not white.
std::size_t InkOn(const PrintJob& job) {
    QImage paper(600, 800, QImage::Format_RGB32);
    paper.fill(Qt::white);
    QPainter painter(&paper);
    TablePages(job, QSizeF(600, 800), 72).Draw(painter, 0);
    painter.end();
    std::size_t ink = 0;
    for (int y = 0; y < paper.height(); ++y)
        for (int x = 0; x < paper.width(); ++x)
            if (paper.pixelColor(x, y) != Qt::white) ++ink;
    return ink;
}

TEST_F(Printing, OptionsShowOnThePage) {
    PrintJob job = TableOf(5);
    job.header = "";
    const std::size_t plain = InkOn(job);
    job.header = "Page";
    const std::size_t withHeader = InkOn(job);
    EXPECT_GT(withHeader, plain);
    std::size_t last = withHeader;
    for (const PrintLines lines : {PrintLines::ColumnHeaders, PrintLines::Rows, PrintLines::All}) {
        job.lines = lines;
        EXPECT_GT(InkOn(job), last);
        last = InkOn(job);
    }
    job.colors = true;
    EXPECT_GT(InkOn(job), 2 * last);
}

}  // namespace
}  // namespace mailvane
