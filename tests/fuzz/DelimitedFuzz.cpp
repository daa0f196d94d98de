// Delimited texts: any bytes read in any format end somewhere, the same whatever the blocks they
// come in; what was read and is valid comes back from the file that it is written to.

#include <optional>

#include "fuzz/FuzzTarget.h"
#include "platform/tables/text/DelimitedWriter.h"
#include "platform/tables/text/FormatGuess.h"
#include "support/TempFolder.h"

namespace mailvane::fuzz {
namespace {

using Record = std::vector<std::optional<std::string>>;

struct Outcome {
    std::vector<Record> records;
    bool valid = true;
    std::string error;
    friend bool operator==(const Outcome&, const Outcome&) = default;
};

Outcome Read(const std::string& path, const DelimitedFormat& format, std::size_t block) {
    Outcome outcome;
    DelimitedReader reader(path, format, block);
    std::vector<Cell> cells;
    std::int64_t line = 0;
    while (reader.Next(cells)) {
        Require(!cells.empty(), "a record has fields");
        Require(reader.Line() > line, "lines go up");
        line = reader.Line();
        outcome.valid = outcome.valid && reader.IsValid();
        Record& record = outcome.records.emplace_back();
        for (const Cell& cell : cells)
            record.push_back(cell.kind == ValueKind::Null ? std::nullopt
                                                          : std::optional(std::string(cell.text)));
    }
    outcome.error = reader.Error();
    return outcome;
}

void TryText(const DelimitedFormat& format, std::string_view bytes) {
    const test::TempFolder folder;
    const std::string path = folder.Write("text", bytes);
    const Outcome outcome = Read(path, format, DecodedFile::UsualBlock);
    for (const std::size_t block : {8u, 11u, 64u})
        Require(Read(path, format, block) == outcome, "blocks make no difference");
    GuessFormat(path);
    if (!outcome.valid || format.quote == '\0') return;

    const std::string copy = folder.File("copy");
    DelimitedFormat written = format;
    written.set = CharacterSet::Utf8;
    DelimitedWriter writer(copy, written);
    for (const Record& record : outcome.records) {
        std::vector<Cell> cells;
        for (const auto& field : record)
            cells.push_back(field ? Cell{ValueKind::Text, *field} : Cell{});
        Require(writer.WriteRow(cells), "a row can be written");
    }
    Require(writer.Finish(), "the file can be written");
    // A mark at the very beginning is taken for the character set's.
    const auto& records = outcome.records;
    if (!records.empty() && records[0][0] && records[0][0]->starts_with("\xEF\xBB\xBF")) return;
    Require(Read(copy, written, 16).records == records, "what was written is read back");
}

}  // namespace

/// The first byte chooses delimiter, quote and character set; the rest is the text.
void TryInput(const std::string& input) {
    if (input.empty()) return;
    const auto choice = static_cast<unsigned char>(input[0]);
    DelimitedFormat format;
    format.delimiter = Delimiters[choice % 4];
    format.quote = "\"'\0\""[choice / 4 % 4];
    format.set = CharacterSetNames[choice / 16 % 4].set;
    TryText(format, std::string_view(input).substr(1));
}

}  // namespace mailvane::fuzz
