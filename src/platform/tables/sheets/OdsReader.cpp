#include <algorithm>
#include <charconv>

#include "platform/os/DateTime.h"
#include "platform/tables/sheets/SheetCells.h"
#include "platform/tables/sheets/WorkbookReaders.h"

namespace mailvane {

namespace {

/// "2023-01-02" or "2023-01-02T03:04:05.6" as dates are told; "" when it is none.
std::string DateIn(std::string_view text) {
    std::string moment(text.substr(0, text.find('.')));
    std::replace(moment.begin(), moment.end(), 'T', ' ');
    const auto date = DateTime::Parse(moment);
    return date ? date->Iso() : std::string();
}

/// "PT13H30M05.5S" as the time of a day; "" when it is longer, or no time.
std::string TimeIn(std::string_view text) {
    int parts[3] = {0, 0, 0};
    if (!text.starts_with("PT")) return {};
    const char* at = text.data() + 2;
    const char* const end = text.data() + text.size();
    for (const char unit : {'H', 'M', 'S'}) {
        int number = 0;
        const auto read = std::from_chars(at, end, number);
        const char* behind = read.ptr;
        if (unit == 'S')
            while (behind < end && *behind != 'S')
                ++behind;
        if (read.ec != std::errc() || behind == end || *behind != unit) continue;
        parts[unit == 'H' ? 0 : unit == 'M' ? 1 : 2] = number;
        at = behind + 1;
    }
    const auto time = DateTime::FromParts(1899, 12, 30, parts[0], parts[1], parts[2]);
    return time && at == end ? time->Iso() : std::string();
}

/// The content of a workbook in the OpenDocument format.
class OdsContent final : public XmlListener {
public:
    explicit OdsContent(FrameWriter& frames) : frames_(frames) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override {
        if (aside_ > 0 || IsAside(name)) {
            ++aside_;
        } else if (name == "table") {
            frames_.Say(frame::Table, attributes.Of("name"));
            number_ = 0;
        } else if (name == "table-row") {
            repeatedRows_ = std::max(attributes.NumberOf("number-rows-repeated", 1), 1);
            column_ = 0;
            row_.Clear();
        } else if (name == "table-cell" || name == "covered-table-cell") {
            StartCell(attributes);
        } else {
            StartText(name, attributes);
        }
    }

    void End(std::string_view name) override {
        if (aside_ > 0) {
            --aside_;
        } else if (name == "table-row") {
            EndRow();
        } else if (name == "table-cell" || name == "covered-table-cell") {
            EndCell();
        } else if (name == "p") {
            --paragraphDepth_;
        }
    }

    void Text(std::string_view text) override {
        if (aside_ == 0 && paragraphDepth_ > 0) text_ += text;
    }

private:
    /// Notes, pictures and the log of changes hold paragraphs that are no values.
    static bool IsAside(std::string_view name) {
        return name == "annotation" || name == "frame" || name == "shapes" ||
               name == "tracked-changes" || name == "custom-shape";
    }

    void StartCell(const XmlAttributes& attributes) {
        repeatedCells_ = std::max(attributes.NumberOf("number-columns-repeated", 1), 1);
        type_ = attributes.Of("value-type");
        value_ = attributes.Of(type_ == "date"      ? "date-value"
                               : type_ == "time"    ? "time-value"
                               : type_ == "boolean" ? "boolean-value"
                               : type_ == "string"  ? "string-value"
                                                    : "value");
        text_.clear();
        paragraphs_ = 0;
    }

    void StartText(std::string_view name, const XmlAttributes& attributes) {
        if (name == "p" && ++paragraphDepth_ == 1 && paragraphs_++ > 0) text_ += '\n';
        if (paragraphDepth_ == 0) return;
        if (name == "s")
            text_.append(static_cast<std::size_t>(std::clamp(attributes.NumberOf("c", 1), 1, 1000)),
                         ' ');
        if (name == "tab") text_ += '\t';
        if (name == "line-break") text_ += '\n';
    }

    void EndCell() {
        ValueKind kind = ValueKind::Null;
        std::string text = Value(kind);
        // An empty stretch to the sheet's edge is one cell.
        const int count = std::min(repeatedCells_, MostSheetColumns - column_);
        if (kind != ValueKind::Null)
            for (int i = 0; i < count; ++i)
                row_.Put(column_ + i, kind, text);
        column_ += std::max(count, 0);
        repeatedCells_ = 1;
    }

    std::string Value(ValueKind& kind) const {
        kind = ValueKind::Null;
        std::string told;
        if (type_ == "date" || type_ == "time") {
            kind = ValueKind::Date;
            told = type_ == "date" ? DateIn(value_) : TimeIn(value_);
        } else if (type_ == "boolean") {
            kind = ValueKind::Truth;
            told = value_ == "true" ? "True" : "False";
        } else if (type_ != "string" && !value_.empty()) {
            double number = 0;
            kind = ValueKind::Number;
            const char* const end = value_.data() + value_.size();
            if (std::from_chars(value_.data(), end, number).ptr == end) told = SheetNumber(number);
        }
        if (!told.empty()) return told;
        const bool hasText = !value_.empty() || paragraphs_ > 0;
        kind = hasText && !type_.empty() ? ValueKind::Text : ValueKind::Null;
        return paragraphs_ > 0 ? text_ : value_;
    }

    void EndRow() {
        const int count = std::min(repeatedRows_, MostSheetRows - number_);
        if (row_.HasValues())
            for (int i = 1; i <= count; ++i)
                row_.Say(frames_, number_ + i);
        number_ += std::max(count, 0);
    }

    FrameWriter& frames_;
    SheetRow row_;
    int number_ = 0;  ///< rows so far
    int column_ = 0;
    int repeatedRows_ = 1;
    int repeatedCells_ = 1;
    int aside_ = 0;  ///< depth inside something that is no value
    int paragraphDepth_ = 0;
    int paragraphs_ = 0;
    std::string type_;
    std::string value_;
    std::string text_;
};

}  // namespace

bool ReadOds(const Package& package, FrameWriter& frames) {
    OdsContent content(frames);
    return package.Read("content.xml", content);
}

}  // namespace mailvane
