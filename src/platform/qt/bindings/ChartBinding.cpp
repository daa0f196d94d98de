#include <QApplication>
#include <QBarCategoryAxis>
#include <QBarSet>
#include <QChart>
#include <QChartView>
#include <QEvent>
#include <QGraphicsLayout>
#include <QHorizontalStackedBarSeries>
#include <QLegend>
#include <QPalette>
#include <QVBoxLayout>
#include <QValueAxis>
#include <algorithm>

#include "platform/qt/QtText.h"
#include "platform/qt/bindings/ControlBinding.h"

namespace mailvane {

namespace {

constexpr double BarWidth = 0.7;  ///< of its place
constexpr double FewBars = 5;
constexpr int NameMargins = 10;  ///< pixels above and below a name together
constexpr int MostNamesInFull = 12;

/// Of the bars behind the first, which has the colour of a selection; seen well on light and dark.
constexpr QRgb SeriesColours[] = {0xFFDA4453, 0xFFF67400, 0xFF27AE60, 0xFF9B59B6};

QColor SeriesColour(std::size_t series, const QPalette& palette) {
    if (series == 0) return palette.color(QPalette::Highlight);
    return QColor::fromRgb(SeriesColours[(series - 1) % std::size(SeriesColours)]);
}

/// Lies between the colours of the text and of the ground.
QColor LineColour(const QPalette& palette) {
    const QColor text = palette.color(QPalette::Text);
    const QColor ground = palette.color(QPalette::Base);
    return QColor((text.red() + 3 * ground.red()) / 4, (text.green() + 3 * ground.green()) / 4,
                  (text.blue() + 3 * ground.blue()) / 4);
}

/// The bars lie, so that the names of the categories can be read; the first one is at the top, and
/// so comes last here: the axis counts from below.
class ChartBinding final : public ControlBinding {
public:
    ChartBinding(Chart& control, QWidget& widget)
        : ControlBinding(control, widget),
          control_(control),
          widget_(widget),
          view_(*new QChartView(&widget)),
          chart_(*view_.chart()),
          bars_(*new QHorizontalStackedBarSeries),
          categories_(*new QBarCategoryAxis),
          values_(*new QValueAxis) {
        auto* layout = new QVBoxLayout(&widget);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(&view_);
        view_.setFocusPolicy(Qt::NoFocus);
        view_.setRenderHint(QPainter::Antialiasing);
        chart_.setAnimationOptions(QChart::NoAnimation);
        chart_.setBackgroundVisible(false);
        chart_.layout()->setContentsMargins(0, 0, 0, 0);
        chart_.setMargins({});
        chart_.legend()->setAlignment(Qt::AlignBottom);
        chart_.addSeries(&bars_);
        chart_.addAxis(&categories_, Qt::AlignLeft);
        chart_.addAxis(&values_, Qt::AlignBottom);
        bars_.attachAxis(&categories_);
        bars_.attachAxis(&values_);
        categories_.setGridLineVisible(false);
        categories_.setTruncateLabels(false);
        values_.setLabelFormat(QStringLiteral("%d"));
    }

private:
    bool Filter(QObject* watched, QEvent* event) override {
        if (watched == &widget_ && event->type() == QEvent::PaletteChange) ShowColours();
        return false;
    }

    void Show(Property property) override {
        if (property != Property::Items) return;
        const bool empty = control_.Categories().empty();
        ShowBars();
        LeaveRoom();
        categories_.setVisible(!empty);
        values_.setVisible(!empty);
        chart_.legend()->setVisible(!empty);
        widget_.setAccessibleDescription(ToWidgetText(control_.ShownText()));
        ShowColours();
    }

    void ShowBars() {
        bars_.clear();
        for (const ChartSeries& series : control_.Series()) {
            auto* set = new QBarSet(ToQt(series.name));
            for (std::size_t i = series.values.size(); i > 0; --i)
                set->append(static_cast<double>(series.values[i - 1]));
            bars_.append(set);
        }
        QStringList names;
        for (const std::string& category : control_.Categories())
            names.prepend(ToQt(category));
        categories_.setCategories(names);
        // A single bar is not to fill the chart.
        bars_.setBarWidth(BarWidth * std::min(control_.EntryCount() / FewBars, 1.0));
        values_.setRange(0, static_cast<double>(std::max<std::int64_t>(Longest(), 1)));
        // Whole numbers at the ticks.
        values_.setTickCount(static_cast<int>(std::clamp<std::int64_t>(Longest() + 1, 2, 6)));
        values_.applyNiceNumbers();
    }

    /// A name that is higher than the place of its bar is shown as nothing but points.
    void LeaveRoom() {
        const int line = widget_.fontMetrics().height() + NameMargins;
        const int lines = std::min(control_.EntryCount(), MostNamesInFull);
        view_.setMinimumHeight((lines + 3) * line);  // with the values, their margins, the legend
    }

    std::int64_t Longest() const {
        std::int64_t longest = 0;
        for (std::size_t i = 0; i < control_.Categories().size(); ++i) {
            std::int64_t length = 0;
            for (const ChartSeries& series : control_.Series())
                length += series.values[i];
            longest = std::max(longest, length);
        }
        return longest;
    }

    void ShowColours() {
        const QPalette palette = widget_.palette();
        const QBrush text = palette.text();
        chart_.setFont(widget_.font());
        view_.setBackgroundBrush(palette.base());
        chart_.legend()->setLabelBrush(text);
        chart_.legend()->setFont(widget_.font());
        for (QAbstractAxis* axis :
             {static_cast<QAbstractAxis*>(&categories_), static_cast<QAbstractAxis*>(&values_)}) {
            axis->setLabelsBrush(text);
            axis->setLabelsFont(widget_.font());
            axis->setLinePen(LineColour(palette));
            axis->setGridLineColor(LineColour(palette));
        }
        const QList<QBarSet*> sets = bars_.barSets();
        for (int i = 0; i < sets.size(); ++i) {
            sets[i]->setColor(SeriesColour(static_cast<std::size_t>(i), palette));
            sets[i]->setBorderColor(palette.color(QPalette::Base));
        }
    }

    Chart& control_;
    QWidget& widget_;
    QChartView& view_;  // the parts belong to the view
    QChart& chart_;
    QHorizontalStackedBarSeries& bars_;
    QBarCategoryAxis& categories_;
    QValueAxis& values_;
};

}  // namespace

BindingPointer BindChart(Chart& control, QWidget& widget) {
    return std::make_unique<ChartBinding>(control, widget);
}

}  // namespace mailvane
