#include "database/exchange/RejectedRows.h"

#include <algorithm>

#include "platform/os/Files.h"

namespace mailvane {

bool RejectedRows::Start(const std::vector<SourceColumn>& columns) {
    std::string name = table_;
    std::replace(name.begin(), name.end(), '/', '_');
    const std::string start = (folder_.empty() ? "." : folder_) + "/" + name + " rejected";
    path_ = start + ".csv";
    for (int number = 2; IsFile(path_); ++number)
        path_ = start + " " + std::to_string(number) + ".csv";
    writer_ = std::make_unique<DelimitedWriter>(path_, DelimitedFormat{});
    std::vector<std::string> names{"Line", "Reason"};
    for (const SourceColumn& column : columns)
        names.push_back(column.name);
    return writer_->WriteColumns(names);
}

bool RejectedRows::Add(const std::vector<SourceColumn>& columns, std::int64_t place,
                       const std::string& reason, const std::vector<Cell>& row) {
    if (!writer_ && !Start(columns)) return false;
    ++count_;
    const std::string line = std::to_string(place);
    std::vector<Cell> cells{{ValueKind::Number, line}, {ValueKind::Text, reason}};
    cells.insert(cells.end(), row.begin(), row.end());
    return writer_->WriteRow(cells);
}

bool RejectedRows::Finish() {
    return !writer_ || writer_->Finish();
}

void RejectedRows::Discard() {
    if (!writer_) return;
    writer_.reset();
    DeleteFile(path_);
    path_.clear();
    count_ = 0;
}

}  // namespace mailvane
