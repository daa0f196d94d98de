#pragma once

#include <string>

namespace mailvane {

/// The name that a CREATE TABLE text gives to its primary key constraint; "" when it names none.
std::string PrimaryConstraintName(const std::string& createSql);

}  // namespace mailvane
