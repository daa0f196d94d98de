// Delimited texts: any bytes read in any format end somewhere, the same whatever the blocks they
// come in; what was read and is valid comes back from the file that it is written to.

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "platform/tables/text/DelimitedWriter.h"
#include "platform/tables/text/FormatGuess.h"

namespace mailvane::fuzz {
namespace {

using Record = std::vector<std::optional<std::string>>;

const std::string& Folder() {
    static const std::string folder = [] {
        std::string name =
            (std::filesystem::temp_directory_path() / "mailvane-fuzz-XXXXXX").string();
        Require(::mkdtemp(name.data()) != nullptr, "a folder can be made");
        return name;
    }();
    return folder;
}

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

void TryText(const DelimitedFormat& format, const std::string& bytes) {
    const std::string path = Folder() + "/text";
    std::ofstream(path, std::ios::binary) << bytes;
    const Outcome outcome = Read(path, format, DecodedFile::UsualBlock);
    for (const std::size_t block : {8u, 11u, 64u})
        Require(Read(path, format, block) == outcome, "blocks make no difference");
    GuessFormat(path);
    if (!outcome.valid || format.quote == '\0') return;

    const std::string copy = Folder() + "/copy";
    DelimitedFormat written = format;
    written.set = CharacterSet::Utf8;
    DelimitedWriter writer(copy, written);
    std::vector<Record> expected;
    for (const Record& record : outcome.records) {
        std::vector<Cell> cells;
        for (const auto& field : record)
            cells.push_back(field ? Cell{ValueKind::Text, *field} : Cell{});
        Require(writer.WriteRow(cells), "a row can be written");
        expected.push_back(record);
    }
    Require(writer.Finish(), "the file can be written");
    // A mark at the very beginning is taken for the character set's.
    if (!expected.empty() && expected[0][0] && expected[0][0]->starts_with("\xEF\xBB\xBF")) return;
    Require(Read(copy, written, 16).records == expected, "what was written is read back");
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
    fuzz::TryText(format, std::string(reinterpret_cast<const char*>(data) + 1, size - 1));
    return 0;
}
