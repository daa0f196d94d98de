#pragma once

#include <QFont>
#include <QSizeF>
#include <cstddef>
#include <vector>

#include "platform/forms/Printing.h"

class QPainter;

namespace mailvane {

/// The pages of a printed table, each drawn for itself. Lengths are dots.
class TablePages {
public:
    /// `page` is the room inside the margins. The job must live as long.
    TablePages(const PrintJob& job, const QSizeF& page, double dotsAnInch);

    std::size_t Count() const { return rowPages_ * bands_.size(); }
    /// From 0; the painter's origin is the corner of the room inside the margins.
    void Draw(QPainter& painter, std::size_t page) const;

private:
    /// Columns that stand side by side on a page.
    struct Band {
        std::size_t first = 0;
        std::size_t count = 0;
    };
    void MakeBands();
    void DrawLine(QPainter& painter, const std::string& text, double top, std::size_t page) const;
    void DrawRow(QPainter& painter, const Band& band, const std::vector<std::string>& texts,
                 double top, bool borders) const;
    void Fill(QPainter& painter, const Band& band, double top, const QColor& color) const;

    const PrintJob& job_;
    QSizeF page_;
    QFont font_;
    double lineHeight_;
    double dot_;  ///< a point in dots
    std::vector<double> widths_;
    std::vector<Band> bands_;
    std::size_t rowsAPage_ = 1;
    std::size_t rowPages_ = 1;
};

}  // namespace mailvane
