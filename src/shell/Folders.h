#pragma once

#include "connection/ConnectionService.h"
#include "database/DatabaseService.h"
#include "send/SendService.h"

namespace mailvane {

/// Ties every folder's part of the program to a workbench: its commands, and its handlers on the
/// forms of others. One per workbench, made before the main window; lives as long.
class Folders {
public:
    explicit Folders(Workbench& wb);

private:
    DatabaseService databases_;
    SendService sending_;
    ConnectionService connections_;
};

}  // namespace mailvane
