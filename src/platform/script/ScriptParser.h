#pragma once

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace mailvane {

struct ScriptLine {
    int number;  ///< in the file, from 1
    std::vector<std::string> words;
};

struct ScriptError {
    int number;
    std::string reason;
};

/// The lines of an automation script that have a command, split into words; or the first line that
/// is wrong.
std::variant<std::vector<ScriptLine>, ScriptError> ParseScript(std::string_view text);

}  // namespace mailvane
