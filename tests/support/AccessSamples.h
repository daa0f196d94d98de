#pragma once

#include <cstdlib>
#include <string>

namespace mailvane::test {

/// Access files of several generations stand beside the project, not in it.
inline std::string AccessSamplesFolder() {
    const char* given = std::getenv("MAILVANE_ACCESS_SAMPLES");
    return given ? given : MAILVANE_SOURCE_DIR "/../shared/fixtures/access";
}

}  // namespace mailvane::test
