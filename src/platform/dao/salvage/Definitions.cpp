#include "platform/dao/salvage/Definitions.h"

#include <algorithm>
#include <optional>

#include "platform/dao/salvage/FileMap.h"
#include "platform/dao/salvage/Record.h"

namespace mailvane {

namespace {

constexpr std::size_t ListColumns = 5;

bool IsType(const std::string& word) {
    return word == "table" || word == "index" || word == "view" || word == "trigger";
}

std::optional<Definition> DefinitionIn(const std::optional<Record>& record) {
    if (!record || !record->whole || record->values.size() != ListColumns) return std::nullopt;
    const std::string* type = TextIn(record->values[0]);
    const std::string* name = TextIn(record->values[1]);
    const std::string* table = TextIn(record->values[2]);
    const std::string* sql = TextIn(record->values[4]);
    if (type == nullptr || name == nullptr || table == nullptr || !IsType(*type))
        return std::nullopt;
    // Only what makes something is ever carried out.
    if (sql != nullptr && !sql->starts_with("CREATE ")) return std::nullopt;
    const std::int64_t root = WholeIn(record->values[3]).value_or(0);
    return Definition{*type, *name, *table, static_cast<PageNumber>(root),
                      sql == nullptr ? std::string() : *sql};
}

/// Adds what a page of the list defines; false when some entry makes no sense.
bool AddDefinitions(const PageFile& file, const TreePage& page, std::vector<Definition>& all) {
    bool sound = true;
    for (const Cell& cell : page.cells) {
        const std::optional<Definition> one = DefinitionIn(ReadRecord(file, page, cell));
        if (!one) sound = false;
        const auto same = [&](const Definition& other) {
            return other.type == one->type && other.name == one->name;
        };
        if (one && std::none_of(all.begin(), all.end(), same)) all.push_back(*one);
    }
    return sound;
}

}  // namespace

Definitions ReadDefinitions(const PageFile& file) {
    const std::vector<TreeRoot> list{{.page = 1, .isTable = true, .columns = ListColumns}};
    const FileMap map(file, list);
    Definitions found;
    found.damaged = map.Of(0).damaged;
    for (const PlacedPage& placed : map.Of(0).pages)
        if (!AddDefinitions(file, ReadLinkedPage(file, placed.number, true), found.all))
            found.damaged = true;
    if (!found.damaged) return found;
    for (const PageNumber number : map.LoosePages()) {
        const TreePage page = ReadTreePage(file, number);
        std::vector<Definition> defined;
        if (page.kind == PageKind::TableLeaf && AddDefinitions(file, page, defined))
            AddDefinitions(file, page, found.all);
    }
    return found;
}

}  // namespace mailvane
