#include "platform/dao/salvage/PageFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

#include "platform/dao/salvage/Record.h"

namespace mailvane {

namespace {

constexpr std::size_t HeadLength = 100;
constexpr std::size_t SmallestPage = 512;
constexpr std::size_t LargestPage = 65536;
constexpr std::size_t SmallestUsableSize = 480;
/// So many pages are enough to tell their size.
constexpr PageNumber SampledPages = 2000;

std::size_t PageSizeInHead(std::string_view head) {
    const std::size_t size = WholeAt(head, 16, 2);
    if (size == 1) return LargestPage;
    return size >= SmallestPage && (size & (size - 1)) == 0 ? size : 0;
}

}  // namespace

std::uint32_t WholeAt(std::string_view page, std::size_t place, int bytes) {
    std::uint32_t whole = 0;
    for (int i = 0; i < bytes; ++i, ++place)
        whole = whole << 8 | (place < page.size() ? static_cast<unsigned char>(page[place]) : 0u);
    return whole;
}

PageFile::PageFile(int handle, std::int64_t fileSize) : handle_(handle), fileSize_(fileSize) {}

PageFile::PageFile(PageFile&& other) noexcept
    : handle_(std::exchange(other.handle_, -1)),
      fileSize_(other.fileSize_),
      head_(std::move(other.head_)),
      pageSize_(other.pageSize_),
      reserved_(other.reserved_),
      pageCount_(other.pageCount_),
      encoding_(other.encoding_),
      headIsSound_(other.headIsSound_) {}

PageFile::~PageFile() {
    if (handle_ >= 0) ::close(handle_);
}

std::optional<PageFile> PageFile::Open(const std::string& path) {
    const int handle = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (handle < 0) return std::nullopt;
    struct stat status {};
    const bool known = ::fstat(handle, &status) == 0;
    PageFile file(handle, known ? status.st_size : 0);
    file.ReadHead();
    if (file.pageSize_ == 0) return std::nullopt;
    return file;
}

void PageFile::SetPageSize(std::size_t size) {
    pageSize_ = size;
    if (size == 0) return;
    const auto step = static_cast<std::int64_t>(size);
    const std::int64_t count = (fileSize_ + step - 1) / step;
    pageCount_ = static_cast<PageNumber>(std::min<std::int64_t>(count, 0xFFFFFFFE));
}

void PageFile::ReadHead() {
    SetPageSize(SmallestPage);
    head_ = Read(1).substr(0, HeadLength);
    const std::size_t told = PageSizeInHead(head_);
    headIsSound_ = head_.starts_with(std::string_view("SQLite format 3\0", 16)) && told != 0;
    if (headIsSound_) {
        SetPageSize(told);
        reserved_ = WholeAt(head_, 20, 1);
        if (UsableSize() < SmallestUsableSize) reserved_ = 0;
    } else {
        std::size_t best = 0;
        int most = 0;
        for (std::size_t size = SmallestPage; size <= LargestPage; size *= 2)
            if (const int pages = PagesOfThatSize(size); pages > most) most = pages, best = size;
        SetPageSize(best);
    }
    const std::uint32_t encoding = WholeAt(head_, 56, 4);
    if (encoding == 2 || encoding == 3) encoding_ = static_cast<TextEncoding>(encoding);
}

/// How many pages make sense when the file is cut into pieces of that size.
int PageFile::PagesOfThatSize(std::size_t size) {
    SetPageSize(size);
    int pages = 0;
    for (PageNumber number = 2; number <= std::min(pageCount_, SampledPages); ++number) {
        const TreePage page = ReadTreePage(*this, number);
        if (page.kind == PageKind::TableLeaf && HoldsWholeRecords(*this, page)) ++pages;
    }
    return pages;
}

std::string PageFile::Read(PageNumber number) const {
    if (number == 0 || number > pageCount_) return {};
    std::string page(pageSize_, '\0');
    std::size_t done = 0;
    while (done < page.size()) {
        const auto place = static_cast<off_t>(number - 1) * static_cast<off_t>(pageSize_) +
                           static_cast<off_t>(done);
        const ssize_t count = ::pread(handle_, page.data() + done, page.size() - done, place);
        if (count <= 0) break;
        done += static_cast<std::size_t>(count);
    }
    return page;
}

}  // namespace mailvane
