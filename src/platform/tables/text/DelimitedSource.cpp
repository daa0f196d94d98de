#include "platform/tables/text/DelimitedSource.h"

#include <filesystem>

namespace mailvane {

namespace {

class DelimitedRows final : public SourceRows {
public:
    DelimitedRows(const std::string& path, const DelimitedFormat& format, bool header)
        : reader_(path, format) {
        pending_ = reader_.Next(first_);
        columns_.resize(first_.size());
        if (!header || !pending_) return;
        for (std::size_t i = 0; i < first_.size(); ++i)
            columns_[i].name = first_[i].text;
        pending_ = false;
    }

    bool IsEmpty() const { return columns_.empty() && reader_.Error().empty(); }

    const std::vector<SourceColumn>& Columns() const override { return columns_; }
    bool Next(std::vector<Cell>& row) override {
        if (!pending_) return reader_.Next(row);
        pending_ = false;
        row = first_;
        return true;
    }
    const std::string& Error() const override { return reader_.Error(); }
    std::string Fault() const override {
        return reader_.IsValid() ? std::string()
                                 : "It holds bytes that are no UTF-8; another character set fits.";
    }
    std::int64_t Place() const override { return reader_.Line(); }
    std::int64_t Done() const override { return reader_.BytesRead(); }
    std::int64_t Total() const override { return reader_.Size(); }

private:
    DelimitedReader reader_;
    std::vector<SourceColumn> columns_;
    std::vector<Cell> first_;
    bool pending_ = false;  ///< the first record is a row, and not yet given
};

}  // namespace

DelimitedSource::DelimitedSource(std::string path, const DelimitedFormat& format)
    : path_(std::move(path)),
      format_(format),
      tables_{std::filesystem::path(path_).stem().string()} {}

std::unique_ptr<SourceRows> DelimitedSource::Open(std::size_t, bool header, std::string& error) {
    auto rows = std::make_unique<DelimitedRows>(path_, format_, header);
    error = rows->IsEmpty() ? "The file '" + path_ + "' is empty." : rows->Error();
    if (!error.empty()) return nullptr;
    return rows;
}

}  // namespace mailvane
