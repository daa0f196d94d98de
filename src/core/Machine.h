#pragma once

#include <string>

namespace mailvane {

int FreeResourcesPercent();  ///< 0: this system has no such pool
std::string GetLocalIpAddress();

}  // namespace mailvane
