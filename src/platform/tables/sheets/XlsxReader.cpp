#include <charconv>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <unordered_set>
#include <utility>

#include "platform/tables/sheets/SheetCells.h"
#include "platform/tables/sheets/WorkbookReaders.h"

namespace mailvane {

namespace {

/// Where the parts of a package are, by the id under which one names the other.
class Relations final : public XmlListener {
public:
    struct Part {
        std::string type;  ///< the last word of the type's address
        std::string entry;
    };

    explicit Relations(std::string folder) : folder_(std::move(folder)) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name != "Relationship") return;
        const std::string_view type = attributes.Of("Type");
        std::string target(attributes.Of("Target"));
        target = target.starts_with('/') ? target.substr(1) : folder_ + target;
        parts_[std::string(attributes.Of("Id"))] = {std::string(type.substr(type.rfind('/') + 1)),
                                                    std::move(target)};
    }
    void End(std::string_view) override {}
    void Text(std::string_view) override {}

    std::string OfType(std::string_view type) const {
        for (const auto& [id, part] : parts_)
            if (part.type == type) return part.entry;
        return {};
    }
    Part OfId(const std::string& id) const {
        const auto found = parts_.find(id);
        return found == parts_.end() ? Part() : found->second;
    }

private:
    std::string folder_;
    std::map<std::string, Part> parts_;
};

struct SheetName {
    std::string name;
    std::string id;
};

class WorkbookPart final : public XmlListener {
public:
    void Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "sheet")
            sheets.push_back(
                {std::string(attributes.Of("name")), std::string(attributes.Of("id"))});
        if (name == "workbookPr") {
            const std::string_view flag = attributes.Of("date1904");
            from1904 = flag == "1" || flag == "true";
        }
    }
    void End(std::string_view) override {}
    void Text(std::string_view) override {}

    std::vector<SheetName> sheets;
    bool from1904 = false;
};

/// Which cell formats make a number a date.
class StylesPart final : public XmlListener {
public:
    void Start(std::string_view name, const XmlAttributes& attributes) override {
        if (name == "numFmt" && IsDateFormat(attributes.Of("formatCode")))
            dates_.insert(attributes.NumberOf("numFmtId", -1));
        if (name == "cellXfs") inside_ = true;
        if (name == "xf" && inside_) formats_.push_back(attributes.NumberOf("numFmtId", 0));
    }
    void End(std::string_view name) override {
        if (name == "cellXfs") inside_ = false;
    }
    void Text(std::string_view) override {}

    bool IsDate(int format) const {
        if (format < 0 || static_cast<std::size_t>(format) >= formats_.size()) return false;
        const int number = formats_[static_cast<std::size_t>(format)];
        return IsBuiltIn(number) || dates_.contains(number);
    }

private:
    /// The date and time formats that every workbook has without naming them.
    static bool IsBuiltIn(int number) {
        return (number >= 14 && number <= 22) || (number >= 27 && number <= 36) ||
               (number >= 45 && number <= 47) || (number >= 50 && number <= 58);
    }

    bool inside_ = false;
    std::unordered_set<int> dates_;
    std::vector<int> formats_;  ///< number format by cell format
};

/// Collects the text of <t> elements, but for the hints on how to pronounce it.
class RichText {
public:
    void Start(std::string_view name) {
        if (name == "rPh") hint_ = true;
        taking_ = name == "t" && !hint_;
    }
    void End(std::string_view name) {
        if (name == "rPh") hint_ = false;
        taking_ = false;
    }
    void Text(std::string_view text) {
        if (taking_) text_ += text;
    }
    /// The text so far, with "_x000D_" and its like as the signs that they stand for.
    std::string Take() {
        std::string text = std::exchange(text_, {});
        std::size_t at = 0;
        while ((at = text.find("_x", at)) != std::string::npos) {
            unsigned code = 0;
            const bool fits = at + 7 <= text.size() && text[at + 6] == '_';
            const char* digits = text.data() + at + 2;
            const bool read =
                fits && std::from_chars(digits, digits + 4, code, 16).ptr == digits + 4;
            if (read && code < 0x80) text.replace(at, 7, 1, static_cast<char>(code));
            ++at;
        }
        return text;
    }

private:
    bool taking_ = false;
    bool hint_ = false;
    std::string text_;
};

class SharedTextsPart final : public XmlListener {
public:
    void Start(std::string_view name, const XmlAttributes&) override { text_.Start(name); }
    void End(std::string_view name) override {
        text_.End(name);
        if (name == "si") texts.push_back(text_.Take());
    }
    void Text(std::string_view text) override { text_.Text(text); }

    std::vector<std::string> texts;

private:
    RichText text_;
};

/// "B12": the column, from 0, and the row, from 1.
std::pair<int, int> AddressIn(std::string_view text) {
    int column = 0;
    int row = 0;
    for (const char sign : text) {
        if (sign >= 'A' && sign <= 'Z' && column <= MostSheetColumns)
            column = column * 26 + (sign - 'A' + 1);
        else if (sign >= '0' && sign <= '9' && row <= MostSheetRows)
            row = row * 10 + (sign - '0');
    }
    return {column - 1, row};
}

class SheetPart final : public XmlListener {
public:
    SheetPart(FrameWriter& frames, const SharedTextsPart& texts, const StylesPart& styles,
              bool from1904)
        : frames_(frames), texts_(texts), styles_(styles), from1904_(from1904) {}

    void Start(std::string_view name, const XmlAttributes& attributes) override {
        text_.Start(name);
        if (name == "row") {
            number_ = attributes.NumberOf("r", number_ + 1);
            column_ = -1;
            row_.Clear();
        } else if (name == "c") {
            const std::string_view address = attributes.Of("r");
            column_ = address.empty() ? column_ + 1 : AddressIn(address).first;
            type_ = attributes.Of("t");
            format_ = attributes.NumberOf("s", 0);
            value_.clear();
        }
        inValue_ = name == "v";
    }
    void End(std::string_view name) override {
        text_.End(name);
        inValue_ = false;
        if (name == "c") PutValue();
        if (name == "row") row_.Say(frames_, number_);
    }
    void Text(std::string_view text) override {
        text_.Text(text);
        if (inValue_) value_ += text;
    }

private:
    void PutValue() {
        const std::string inlined = text_.Take();
        if (type_ == "inlineStr") {
            row_.Put(column_, ValueKind::Text, inlined);
        } else if (value_.empty() || type_ == "e") {
            return;
        } else if (type_ == "s") {
            const auto index = static_cast<std::size_t>(std::strtoul(value_.c_str(), nullptr, 10));
            if (index >= texts_.texts.size()) throw std::runtime_error("a text is missing");
            row_.Put(column_, ValueKind::Text, texts_.texts[index]);
        } else if (type_ == "str") {
            row_.Put(column_, ValueKind::Text, value_);
        } else if (type_ == "b") {
            row_.Put(column_, ValueKind::Truth, value_ == "0" ? "False" : "True");
        } else {
            PutNumber();
        }
    }

    void PutNumber() {
        double number = 0;
        const char* const end = value_.data() + value_.size();
        const auto read = std::from_chars(value_.data(), end, number);
        if (read.ec != std::errc() || read.ptr != end)
            row_.Put(column_, ValueKind::Text, value_);  // a date as text, in newer workbooks
        else if (styles_.IsDate(format_))
            row_.Put(column_, ValueKind::Date, SheetDate(number, from1904_));
        else
            row_.Put(column_, ValueKind::Number, SheetNumber(number));
    }

    FrameWriter& frames_;
    const SharedTextsPart& texts_;
    const StylesPart& styles_;
    bool from1904_;
    SheetRow row_;
    int number_ = 0;
    int column_ = -1;
    int format_ = 0;
    bool inValue_ = false;
    std::string type_;
    std::string value_;
    RichText text_;
};

std::string FolderOf(const std::string& entry) {
    return entry.substr(0, entry.rfind('/') + 1);
}

}  // namespace

void ReadXlsx(const Package& package, FrameWriter& frames) {
    Relations roots("");
    package.Read("_rels/.rels", roots);
    const std::string workbookEntry = roots.OfType("officeDocument");
    WorkbookPart workbook;
    if (!package.Read(workbookEntry, workbook)) throw std::runtime_error("it has no workbook");
    const std::string folder = FolderOf(workbookEntry);
    Relations parts(folder);
    package.Read(folder + "_rels/" + workbookEntry.substr(folder.size()) + ".rels", parts);
    SharedTextsPart texts;
    package.Read(parts.OfType("sharedStrings"), texts);
    StylesPart styles;
    package.Read(parts.OfType("styles"), styles);
    for (const SheetName& sheet : workbook.sheets) {
        const Relations::Part part = parts.OfId(sheet.id);
        if (part.type != "worksheet") continue;  // a chart
        frames.Say(frame::Table, sheet.name);
        SheetPart rows(frames, texts, styles, workbook.from1904);
        if (!package.Read(part.entry, rows)) throw std::runtime_error("a sheet is missing");
    }
}

}  // namespace mailvane
