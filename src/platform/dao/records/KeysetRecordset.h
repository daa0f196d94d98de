#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/records/RecordsetBase.h"
#include "platform/dao/structure/Schema.h"

namespace mailvane {

/// The rows of one table that a recordset shows.
struct KeysetSource {
    std::shared_ptr<const TableInfo> table;  ///< with row keys
    std::vector<std::string> columns;
    std::string keyQuery;              ///< gives the keys in order
    std::vector<std::string> filters;  ///< conditions of the dialect that they must meet too
};

/// Rows of one table by their keys; can be changed.
class KeysetRecordset final : public RecordsetBase {
public:
    static DaoResult<std::shared_ptr<Recordset>> Open(std::shared_ptr<Connection> connection,
                                                      const std::string& name, KeysetSource source);

    DaoError AddNew() override;
    DaoError Edit() override;
    using RecordsetBase::Set;
    DaoError Set(std::size_t index, const DaoValue& value) override;
    DaoError Update() override;
    void CancelUpdate() override;
    DaoError Delete() override;
    DaoResult<Bookmark> LastModified() const override;
    DaoResult<std::shared_ptr<Recordset>> OpenFiltered() override;

protected:
    DaoError LoadKeys(Keyset& keys) override;
    DaoResult<std::optional<Row>> ReadRow(std::int64_t key) const override;
    DaoResult<std::string> Translate(const std::string& condition) const override;
    DaoResult<std::vector<std::size_t>> MatchingSlots(const std::string& expression) override;
    DaoResult<bool> Matches(const std::string& expression, std::int64_t key) override;
    std::optional<DaoResult<DaoValue>> PendingValue(std::size_t index) const override;
    std::int64_t ChangeStamp() const override;

private:
    enum class Change { None, Adding, Editing };

    KeysetRecordset(std::shared_ptr<Connection> connection, const std::string& name,
                    KeysetSource source);
    DaoError LoadKeysOfOneState(Keyset& keys);
    DaoResult<std::vector<std::int64_t>> MatchingKeys(const std::string& expression);
    DaoResult<DaoValue> DefaultOf(const Field& field) const;
    DaoError Insert();
    DaoError Write();
    void BindPending(Statement& statement) const;

    KeysetSource source_;
    std::string tableSql_;
    std::string rowSql_;
    Change change_ = Change::None;
    std::vector<std::optional<DaoValue>> pending_;  ///< by column; empty where nothing was set
    std::optional<Bookmark> lastModified_;
};

}  // namespace mailvane
