#pragma once

#include "platform/tables/text/DelimitedReader.h"

namespace mailvane {

/// A delimited text as the one table of its file; the table has the file's name.
class DelimitedSource final : public TableSource {
public:
    DelimitedSource(std::string path, const DelimitedFormat& format);

    const std::vector<std::string>& Tables() const override { return tables_; }
    bool NamesColumns() const override { return false; }
    std::unique_ptr<SourceRows> Open(std::size_t table, bool header, std::string& error) override;

private:
    std::string path_;
    DelimitedFormat format_;
    std::vector<std::string> tables_;
};

}  // namespace mailvane
