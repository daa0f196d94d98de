#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

namespace mailvane::test {

/// A folder of a test's own, removed with all in it at the end.
class TempFolder {
public:
    TempFolder() {
        std::string name =
            (std::filesystem::temp_directory_path() / "mailvane-test-XXXXXX").string();
        if (::mkdtemp(name.data()) != nullptr) path_ = name;
    }
    ~TempFolder() {
        std::error_code ignored;
        if (!path_.empty()) std::filesystem::remove_all(path_, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::string& Path() const { return path_; }  ///< without a separator at its end
    std::string File(const std::string& name) const { return path_ + "/" + name; }

    /// Writes a file in the folder, with the folders that its name asks for; gives its path.
    std::string Write(const std::string& name, std::string_view content) const {
        const std::filesystem::path path = File(name);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
        return path.string();
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(File(name), std::ios::binary);
        std::ostringstream content;
        content << file.rdbuf();
        return content.str();
    }

private:
    std::string path_;
};

}  // namespace mailvane::test
