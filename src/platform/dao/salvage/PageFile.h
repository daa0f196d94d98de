#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace mailvane {

using PageNumber = std::uint32_t;  ///< pages count from 1; 0 is none

enum class TextEncoding { Utf8 = 1, Utf16LittleEndian = 2, Utf16BigEndian = 3 };

/// The whole number of that many bytes, the highest first, at a place of a page; bytes beyond its
/// end count as 0.
std::uint32_t WholeAt(std::string_view page, std::size_t place, int bytes);

/// A database file as the pages that it consists of, read without SQLite, so that damage to one
/// page hides no other. The file has to stay as it is meanwhile, and its log to be merged into it.
class PageFile {
public:
    /// Nothing when the file cannot be read, or holds no page of a database. A damaged head costs
    /// nothing: the size of the pages shows in the pages themselves.
    static std::optional<PageFile> Open(const std::string& path);
    ~PageFile();
    PageFile(PageFile&& other) noexcept;
    PageFile& operator=(PageFile&&) = delete;

    PageNumber PageCount() const { return pageCount_; }
    std::size_t PageSize() const { return pageSize_; }
    std::size_t UsableSize() const { return pageSize_ - reserved_; }
    TextEncoding Encoding() const { return encoding_; }
    bool HeadIsSound() const { return headIsSound_; }
    /// Four bytes of the file's head.
    std::uint32_t HeadNumber(std::size_t place) const { return WholeAt(head_, place, 4); }
    bool UsesWriteAheadLog() const { return WholeAt(head_, 18, 1) == 2; }

    /// A whole page, with zeros for what the file or the disk does not give; empty when there is no
    /// page of that number.
    std::string Read(PageNumber number) const;

private:
    PageFile(int handle, std::int64_t fileSize);
    void ReadHead();
    void SetPageSize(std::size_t size);
    int PagesOfThatSize(std::size_t size);

    int handle_;
    std::int64_t fileSize_;
    std::string head_;
    std::size_t pageSize_ = 0;
    std::size_t reserved_ = 0;
    PageNumber pageCount_ = 0;
    TextEncoding encoding_ = TextEncoding::Utf8;
    bool headIsSound_ = false;
};

}  // namespace mailvane
