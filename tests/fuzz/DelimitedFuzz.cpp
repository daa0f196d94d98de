// Delimited texts: any bytes read in any format end somewhere, the same whatever the blocks they
// come in; what was read and is valid comes back from the file that it is written to.

#include <optional>

#include "fuzz/Require.h"
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
}  // namespace mailvane::fuzz

/// The first byte chooses delimiter, quote and character set; the rest is the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace mailvane;
    if (size == 0) return 0;
    DelimitedFormat format;
    format.delimiter = Delimiters[data[0] % 4];
    format.quote = "\"'\0\""[data[0] / 4 % 4];
    format.set = CharacterSetNames[data[0] / 16 % 4].set;
    fuzz::TryText(format, {reinterpret_cast<const char*>(data) + 1, size - 1});
    return 0;
}
