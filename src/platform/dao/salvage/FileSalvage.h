#pragma once

#include <cstddef>
#include <list>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/salvage/Definitions.h"
#include "platform/dao/salvage/FileMap.h"
#include "platform/dao/salvage/LostAndFound.h"
#include "platform/dao/salvage/RepairReport.h"
#include "platform/dao/salvage/TableSalvage.h"

namespace mailvane {

class Connection;

/// Saves a whole damaged file into a fresh one: first its definitions, then its rows.
class FileSalvage {
public:
    FileSalvage(const PageFile& file, Connection& fresh);

    /// Fails only when the fresh file takes no more.
    DaoError Run();
    /// False: neither a definition nor a row was found.
    bool FoundAnything() const;
    RepairReport Report() const;

private:
    DaoError Make(const Definition& one);
    DaoError MakeTablesAndIndexes();
    DaoError MakeVirtualTable(const Definition& one);
    DaoError MakeTheRest();
    DaoError ReadShapes();
    void MapPages();
    DaoError SaveRows();
    DaoError SaveUnknownTable(std::size_t root);
    DaoError SaveLoosePage(PageNumber number);
    std::vector<TableSalvage*> OwnersOf(const TreePage& page);
    bool MayBeOfIndex(const TreePage& page) const;
    DaoError SaveFromIndexes(TableSalvage& table);
    DaoError CopyLastNumbers(std::size_t root);
    DaoError CopyVersions();

    const PageFile& file_;
    Connection& fresh_;
    const Definitions definitions_;
    std::map<std::size_t, TableShape> shapes_;  ///< by the number of the definition
    std::vector<TreeRoot> roots_;               ///< one for each definition
    std::optional<FileMap> map_;
    std::list<TableSalvage> tables_;
    LostAndFound lost_;
    std::vector<std::string> lostObjects_;
};

}  // namespace mailvane
