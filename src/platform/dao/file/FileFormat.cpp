#include "platform/dao/file/FileFormat.h"

#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <string_view>

namespace mailvane {

namespace {

constexpr std::size_t HeaderLength = 32;
/// The smallest page that a database can have; SQLite takes less for a database still empty.
constexpr off_t LeastFileSize = 512;

std::string ReadHeader(const std::string& path) {
    std::string header(HeaderLength, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(header.data(), static_cast<std::streamsize>(header.size()));
    header.resize(static_cast<std::size_t>(file.gcount()));
    return header;
}

bool HoldsAt(std::string_view header, std::size_t offset, std::string_view mark) {
    return header.size() >= offset + mark.size() && header.substr(offset, mark.size()) == mark;
}

}  // namespace

DaoError CheckFile(const std::string& path) {
    struct stat status {};
    if (::stat(path.c_str(), &status) != 0) {
        std::error_code noLink;
        const std::filesystem::path target = std::filesystem::read_symlink(path, noLink);
        return MakeDaoError(dao_error::FileNotFound, noLink ? path : target.string());
    }
    if (!S_ISREG(status.st_mode) || status.st_size < LeastFileSize)
        return MakeDaoError(dao_error::UnrecognizedFormat, path);
    return {};
}

DaoError ForeignFormatError(const std::string& path) {
    using namespace std::string_view_literals;
    const std::string header = ReadHeader(path);
    if (HoldsAt(header, 0, "SQLite format 3\0"sv))
        return MakeDaoError(dao_error::DamagedFile, path);
    DaoError error = MakeDaoError(dao_error::UnrecognizedFormat, path);
    if (HoldsAt(header, 4, "Standard Jet DB"sv) || HoldsAt(header, 4, "Standard ACE DB"sv))
        error.description +=
            " It is a Microsoft Access file. Import its tables into a database of your own.";
    return error;
}

}  // namespace mailvane
