#include "platform/dao/file/Workspace.h"

#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

std::shared_ptr<Workspace> Workspace::Create(const std::string&) {
    return std::shared_ptr<Workspace>(new Workspace());
}

DaoResult<std::shared_ptr<Database>> Workspace::OpenDatabase(const std::string& path,
                                                             OpenMode mode) {
    DaoResult<std::shared_ptr<Connection>> connection = Connection::Open(path, mode);
    if (connection.Failed()) return connection.Error();
    return Register(std::move(*connection));
}

DaoResult<std::shared_ptr<Database>> Workspace::CreateDatabase(const std::string& path) {
    DaoResult<std::shared_ptr<Connection>> connection = Connection::Create(path);
    if (connection.Failed()) return connection.Error();
    return Register(std::move(*connection));
}

std::shared_ptr<Database> Workspace::Register(std::shared_ptr<Connection> connection) {
    std::shared_ptr<Database> database(new Database(std::move(connection)));
    std::erase_if(databases_, [](const std::weak_ptr<Database>& one) { return one.expired(); });
    databases_.push_back(database);
    return database;
}

void Workspace::Close() {
    for (const std::weak_ptr<Database>& one : std::exchange(databases_, {}))
        if (const std::shared_ptr<Database> database = one.lock()) database->Close();
}

}  // namespace mailvane
