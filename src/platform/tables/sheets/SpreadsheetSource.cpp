#include "platform/tables/sheets/SpreadsheetSource.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>

#include "platform/tables/ReaderProcess.h"
#include "platform/tables/sheets/WorkbookReaders.h"

namespace mailvane {

namespace {

/// Seconds of computing until a large book gives its first row.
constexpr int Patience = 120;

/// A file without a name, gone when it is closed.
class NamelessFile {
public:
    NamelessFile() {
        std::error_code ignored;
        std::string name =
            (std::filesystem::temp_directory_path(ignored) / "mailvane-XXXXXX").string();
        handle_ = ::mkostemp(name.data(), O_CLOEXEC);
        if (handle_ >= 0) ::unlink(name.c_str());
    }
    ~NamelessFile() {
        if (handle_ >= 0) ::close(handle_);
    }
    NamelessFile(const NamelessFile&) = delete;
    NamelessFile& operator=(const NamelessFile&) = delete;

    int Handle() const { return handle_; }

private:
    int handle_ = -1;
};

struct SheetPlace {
    std::int64_t begin = 0;  ///< of its first row among the frames
    std::int64_t end = 0;
    std::size_t columns = 0;
};

class SheetRows final : public SourceRows {
public:
    SheetRows(std::shared_ptr<NamelessFile> file, const SheetPlace& place, bool header)
        : file_(std::move(file)), place_(place), frames_(file_->Handle(), place.begin) {
        columns_.resize(place.columns);
        std::vector<Cell> names;
        if (!header || !Next(names)) return;
        for (std::size_t i = 0; i < names.size(); ++i)
            columns_[i].name = names[i].text;
    }

    const std::vector<SourceColumn>& Columns() const override { return columns_; }
    bool Next(std::vector<Cell>& row) override {
        if (frames_.Passed() >= Total() || !frames_.Next()) return false;
        FrameBody body = frames_.Body();
        row_ = body.Number();
        row.clear();
        while (!body.AtEnd())
            row.push_back(body.TakeCell());
        return true;
    }
    const std::string& Error() const override { return error_; }
    std::int64_t Place() const override { return row_; }
    std::int64_t Done() const override { return frames_.Passed(); }
    std::int64_t Total() const override { return place_.end - place_.begin; }

private:
    std::shared_ptr<NamelessFile> file_;
    SheetPlace place_;
    FrameReader frames_;
    std::vector<SourceColumn> columns_;
    std::int64_t row_ = 0;
    std::string error_;
};

class SpreadsheetSource final : public TableSource {
public:
    /// Reads what the process has left in the file; `error` is its own word on what went wrong.
    bool Index(std::string& error) {
        FrameReader frames(file_->Handle(), 0);
        while (frames.Next()) {
            if (frames.Tag() == frame::End) return true;
            if (frames.Tag() == frame::Failure) error = frames.Body().Text();
            if (frames.Tag() == frame::Table) {
                tables_.emplace_back(frames.Body().Text());
                places_.push_back({frames.Passed(), frames.Passed(), 0});
            } else if (frames.Tag() == frame::Row && !places_.empty()) {
                FrameBody body = frames.Body();
                body.Number();
                std::size_t columns = 0;
                for (; !body.AtEnd(); ++columns)
                    body.TakeCell();
                places_.back().columns = std::max(places_.back().columns, columns);
                places_.back().end = frames.Passed();
            }
        }
        return false;
    }

    int Handle() const { return file_->Handle(); }
    const std::vector<std::string>& Tables() const override { return tables_; }
    bool NamesColumns() const override { return false; }
    std::unique_ptr<SourceRows> Open(std::size_t table, bool header, std::string& error) override {
        if (places_.at(table).columns == 0) {
            error = "The sheet '" + tables_.at(table) + "' is empty.";
            return nullptr;
        }
        error.clear();
        return std::make_unique<SheetRows>(file_, places_.at(table), header);
    }

private:
    std::shared_ptr<NamelessFile> file_ = std::make_shared<NamelessFile>();
    std::vector<std::string> tables_;
    std::vector<SheetPlace> places_;
};

/// In a reading process.
void ReadWorkbook(const std::string& path, FrameWriter& frames) {
    try {
        const Package package(path);
        if (!ReadOds(package, frames)) ReadXlsx(package, frames);
        frames.Say(frame::End);
    } catch (const std::exception& failure) {
        frames.Say(frame::Failure, failure.what());
    }
}

}  // namespace

bool IsSpreadsheetFile(const std::string& path) {
    char head[4] = {};
    std::ifstream file(path, std::ios::binary);
    file.read(head, sizeof head);
    return file && std::string_view(head, sizeof head) == "PK\x03\x04";
}

std::unique_ptr<TableSource> OpenSpreadsheet(const std::string& path, std::string& error) {
    auto source = std::make_unique<SpreadsheetSource>();
    const bool ended = source->Handle() >= 0 &&
                       ReaderProcess::Run([&](FrameWriter& frames) { ReadWorkbook(path, frames); },
                                          Patience, source->Handle());
    std::string reason;
    if (ended && source->Index(reason) && !source->Tables().empty()) return source;
    error = "The spreadsheet '" + path + "' cannot be read: it is damaged, or of another kind.";
    if (!reason.empty()) error += " (" + reason + ")";
    return nullptr;
}

}  // namespace mailvane
