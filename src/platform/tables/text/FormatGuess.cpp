#include "platform/tables/text/FormatGuess.h"

#include <algorithm>
#include <fstream>
#include <map>

#include "platform/os/DateTime.h"
#include "platform/os/Files.h"
#include "platform/tables/text/DelimitedSource.h"

namespace mailvane {

namespace {

using Rows = std::vector<std::vector<std::string>>;

constexpr std::size_t SampleRows = 60;
/// What the character set is guessed from; a file is seldom longer.
constexpr std::int64_t SampleBytes = 16 * 1024 * 1024;

CharacterSet SetOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    const std::int64_t size = std::clamp<std::int64_t>(FileSize(path) + 1, 1, SampleBytes);
    std::string sample(static_cast<std::size_t>(size), '\0');
    file.read(sample.data(), static_cast<std::streamsize>(sample.size()));
    sample.resize(static_cast<std::size_t>(file.gcount()));
    return GuessCharacterSet(sample, file.eof());
}

/// How many rows have the number of fields that most of them have, and that number.
std::pair<std::size_t, std::size_t> CommonWidth(const Rows& rows) {
    std::map<std::size_t, std::size_t> counts;
    for (const auto& row : rows)
        ++counts[row.size()];
    std::pair<std::size_t, std::size_t> best{0, 0};
    for (const auto& [width, count] : counts)
        if (width > 1) best = std::max(best, {count, width});
    return best;
}

/// A format is the better the more rows it cuts into the same number of fields, more than one.
std::pair<std::size_t, std::size_t> Merit(const std::string& path, const DelimitedFormat& format) {
    DelimitedSource source(path, format);
    return CommonWidth(FirstRows(source, 0, false, SampleRows));
}

/// Apostrophes are quotes when fields begin and end with them.
bool QuotesWithApostrophes(const Rows& rows) {
    std::size_t quoted = 0;
    std::size_t others = 0;
    for (const auto& row : rows)
        for (const std::string& field : row) {
            const bool both = field.size() > 1 && field.front() == '\'' && field.back() == '\'';
            if (both) ++quoted;
            if (!both && field.find('\'') != std::string::npos) ++others;
        }
    return quoted > 0 && quoted > others;
}

bool LooksLikeValue(const std::string& text) {
    if (text.find('@') != std::string::npos) return true;
    const bool numeric = std::all_of(text.begin(), text.end(), [](char sign) {
        return (sign >= '0' && sign <= '9') ||
               std::string_view("+-.,/: %").find(sign) != std::string_view::npos;
    });
    return numeric || DateTime::Parse(text).has_value();
}

}  // namespace

Rows FirstRows(TableSource& source, std::size_t table, bool header, std::size_t count) {
    std::string error;
    const auto opened = source.Open(table, header, error);
    Rows rows;
    std::vector<Cell> cells;
    while (opened && rows.size() < count && opened->Next(cells)) {
        auto& row = rows.emplace_back();
        for (const Cell& cell : cells)
            row.emplace_back(cell.text);
    }
    return rows;
}

bool FirstRowIsHeader(TableSource& source, std::size_t table) {
    const Rows rows = FirstRows(source, table, false, SampleRows);
    if (rows.empty()) return true;
    const auto& first = rows.front();
    std::size_t named = 0;
    for (std::size_t column = 0; column < first.size(); ++column) {
        const std::string& name = first[column];
        if (name.empty()) continue;
        ++named;
        if (LooksLikeValue(name)) return false;
        for (std::size_t row = 1; row < rows.size(); ++row)
            if (column < rows[row].size() && rows[row][column] == name) return false;
    }
    return named * 2 >= first.size();
}

DelimitedFormat GuessFormat(const std::string& path) {
    DelimitedFormat best;
    best.set = SetOf(path);
    auto bestMerit = Merit(path, best);
    for (const char delimiter : Delimiters) {
        DelimitedFormat format = best;
        format.delimiter = delimiter;
        const auto merit = Merit(path, format);
        if (merit <= bestMerit) continue;
        best = format;
        bestMerit = merit;
    }
    DelimitedSource source(path, best);
    if (QuotesWithApostrophes(FirstRows(source, 0, false, SampleRows))) best.quote = '\'';
    return best;
}

}  // namespace mailvane
