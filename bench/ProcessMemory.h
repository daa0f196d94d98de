#pragma once

#include <fstream>
#include <string>

#include "BenchSupport.h"

namespace mailvane::bench {

/// A value of /proc/self/status in megabytes.
inline double ProcessMegabytes(const std::string& name) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kilobytes = 0;
    while (status >> word)
        if (word == name + ":" && status >> kilobytes) return kilobytes / 1024;
    Fail("The system does not tell " + name);
}

/// From here on the peak is counted anew.
inline void ForgetPeak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

}  // namespace mailvane::bench
