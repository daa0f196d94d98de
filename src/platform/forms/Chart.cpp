#include "platform/forms/Chart.h"

#include <utility>

namespace mailvane {

void Chart::SetData(std::vector<std::string> categories, std::vector<ChartSeries> series) {
    for (ChartSeries& each : series)
        each.values.resize(categories.size());
    if (categories == categories_ && series == series_) return;
    categories_ = std::move(categories);
    series_ = std::move(series);
    Changed(Property::Items);
}

std::string Chart::ShownText() const {
    std::string text;
    for (std::size_t i = 0; i < categories_.size(); ++i) {
        text += (i > 0 ? "\r\n" : "") + categories_[i];
        const char* separator = ": ";
        for (const ChartSeries& series : series_) {
            text += separator + series.name + " " + std::to_string(series.values[i]);
            separator = ", ";
        }
    }
    return text;
}

}  // namespace mailvane
