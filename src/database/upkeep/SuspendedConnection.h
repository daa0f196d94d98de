#pragma once

#include <string>

#include "core/Workbench.h"

namespace mailvane {

/// Exclusive access to the recipients database for the length of a block: the connection of the
/// database view is closed, and with it those of the forms that observe it. The tool opens the file
/// itself and closes it again inside the block. The view's connection comes back at the end of the
/// block, however that is left; blocks may nest, and the outermost brings it back.
class SuspendedConnection {
public:
    explicit SuspendedConnection(Workbench& wb);
    /// The view shows the same table again, in the same order; the first one when it has gone.
    ~SuspendedConnection();
    SuspendedConnection(const SuspendedConnection&) = delete;
    SuspendedConnection& operator=(const SuspendedConnection&) = delete;

    const std::string& Path() const { return path_; }  ///< of the database file; "" when none
    /// The view shows this table at the end instead.
    void ShowTable(const std::string& table);

private:
    Workbench& wb_;
    std::string path_;
};

}  // namespace mailvane
