#pragma once

#include <cstdint>

#include "platform/dao/DaoError.h"

namespace mailvane {

class Connection;

/// Copies tables, every row that can still be read, indexes, views and triggers of a damaged
/// database into an empty one.
DaoError SalvageInto(Connection& damaged, Connection& fresh);

}  // namespace mailvane
