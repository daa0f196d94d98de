#pragma once

#include <string>

#include "platform/dao/DaoError.h"
#include "platform/dao/structure/TableDef.h"

namespace mailvane {

class Connection;

/// Changes of the structure of an open file, with the outcomes that Database tells; each is one
/// unit.
DaoError AppendTableTo(Connection& connection, const TableDef& table);
DaoError DeleteTableFrom(Connection& connection, const std::string& name);
DaoError RenameTableIn(Connection& connection, const std::string& name, const std::string& newName);
DaoError AppendFieldTo(Connection& connection, const std::string& table, const Field& field);
DaoError DeleteFieldFrom(Connection& connection, const std::string& table,
                         const std::string& field);
DaoError RenameFieldIn(Connection& connection, const std::string& table, const std::string& field,
                       const std::string& newName);
DaoError AppendIndexTo(Connection& connection, const std::string& table, const Index& index);

}  // namespace mailvane
