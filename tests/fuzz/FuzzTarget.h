#pragma once

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <string>

namespace mailvane::fuzz {

/// Ends the process when something that must hold does not: what the fuzzer reports as a finding.
inline void Require(bool holds, const char* what) {
    if (holds) return;
    std::cerr << "Does not hold: " << what << std::endl;
    std::abort();
}

/// What a target does with an input: the one routine that its file defines.
void TryInput(const std::string& input);

}  // namespace mailvane::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    mailvane::fuzz::TryInput(std::string(reinterpret_cast<const char*>(data), size));
    return 0;
}
