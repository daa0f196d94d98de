#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/tables/text/DelimitedWriter.h"

namespace mailvane {

/// The rows that an import could not take, as delimited text: line, reason, and the values as they
/// were, so that they can be set right and imported again. The file is made with the first of them.
class RejectedRows {
public:
    RejectedRows(std::string folder, std::string table)
        : folder_(std::move(folder)), table_(std::move(table)) {}

    bool Add(const std::vector<SourceColumn>& columns, std::int64_t place,
             const std::string& reason, const std::vector<Cell>& row);
    bool Finish();   ///< true when there are none
    void Discard();  ///< the import has failed after all

    std::int64_t Count() const { return count_; }
    const std::string& Path() const { return path_; }  ///< "" without rows
    std::string Error() const { return writer_ ? writer_->Error() : std::string(); }

private:
    bool Start(const std::vector<SourceColumn>& columns);
    std::string folder_;
    std::string table_;
    std::string path_;
    std::unique_ptr<DelimitedWriter> writer_;
    std::int64_t count_ = 0;
};

}  // namespace mailvane
