#include "core/records/RecordsetRows.h"

namespace mailvane {

RecordsetRows::RecordsetRows(std::shared_ptr<Recordset> recordset)
    : recordset_(std::move(recordset)) {}

std::size_t RecordsetRows::Count() const {
    return recordset_->IsOpen() ? static_cast<std::size_t>(recordset_->RecordCount()) : 0;
}

std::vector<std::vector<std::string>> RecordsetRows::Read(std::size_t first,
                                                          std::size_t count) const {
    std::vector<std::vector<std::string>> texts;
    const auto rows = recordset_->ReadRows(first, count);
    if (rows.Failed()) return texts;
    for (const auto& row : *rows) {
        auto& line = texts.emplace_back();
        for (const DaoValue& value : row)
            line.push_back(value.TextOrEmpty());
    }
    return texts;
}

std::int64_t RecordsetRows::BookmarkAt(std::size_t row) const {
    return recordset_->BookmarkAt(row).ValueOr(-1);
}

std::optional<std::size_t> RecordsetRows::RowOf(std::int64_t bookmark) const {
    const auto position = recordset_->PositionOf(bookmark);
    return position.Ok() ? std::optional(*position) : std::nullopt;
}

}  // namespace mailvane
