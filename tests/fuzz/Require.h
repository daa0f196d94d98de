#pragma once

#include <cstdlib>
#include <iostream>

namespace mailvane::fuzz {

/// Ends the process when something that must hold does not: what the fuzzer reports as a finding.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "Does not hold: " << what << std::endl;
    std::abort();
}

}  // namespace mailvane::fuzz
