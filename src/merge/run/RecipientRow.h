#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/records/Recordset.h"

namespace mailvane {

/// The current row of the recipients as texts, by the position of a column in a list of names. A
/// column is read when it is first asked for.
class RecipientRow {
public:
    RecipientRow(std::shared_ptr<Recordset> recipients, const std::vector<std::string>& names);

    /// The recordset has moved, or may have: everything is read again.
    void Renew();
    /// Null where there is no text: Null values, no such column, no current row.
    const std::string* Text(std::size_t position);
    const std::string* Text(const std::string& name);

private:
    enum class State { Unread, Present, Absent };
    struct Column {
        std::optional<std::size_t> index;  ///< in the recordset
        State state = State::Unread;
        std::string text;
    };
    void Read(Column& column);
    std::shared_ptr<Recordset> recipients_;
    std::vector<std::string> names_;
    std::vector<Column> columns_;
};

}  // namespace mailvane
