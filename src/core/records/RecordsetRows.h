#pragma once

#include <memory>

#include "platform/dao/records/Recordset.h"
#include "platform/forms/Grid.h"

namespace mailvane {

/// The rows of a recordset as a grid shows them; only those asked for are read.
class RecordsetRows final : public GridRows {
public:
    explicit RecordsetRows(std::shared_ptr<Recordset> recordset);

    std::size_t Count() const override;
    std::vector<std::vector<std::string>> Read(std::size_t first, std::size_t count) const override;
    std::int64_t BookmarkAt(std::size_t row) const override;
    std::optional<std::size_t> RowOf(std::int64_t bookmark) const override;

private:
    std::shared_ptr<Recordset> recordset_;
};

}  // namespace mailvane
