#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/forms/Control.h"

namespace mailvane {

/// The counts of one kind: a value for each category.
struct ChartSeries {
    std::string name;
    std::vector<std::int64_t> values;

    friend bool operator==(const ChartSeries&, const ChartSeries&) = default;
};

/// Bars, one a category, stacked of the values that the series have for it.
class Chart final : public Control {
public:
    Chart(Form& form, std::string name) : Control(form, std::move(name), ControlKind::Chart) {}

    const std::vector<std::string>& Categories() const { return categories_; }
    const std::vector<ChartSeries>& Series() const { return series_; }
    /// Values that a series lacks count as 0; those beyond the categories are left out.
    void SetData(std::vector<std::string> categories, std::vector<ChartSeries> series);

    /// A line for each category: "example.com: Sent 10, Refused 2".
    std::string ShownText() const override;
    int EntryCount() const override { return static_cast<int>(categories_.size()); }

private:
    std::vector<std::string> categories_;
    std::vector<ChartSeries> series_;
};

}  // namespace mailvane
