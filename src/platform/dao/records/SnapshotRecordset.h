#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/records/RecordsetBase.h"

namespace mailvane {

/// The rows of a query that are not the rows of one table, or of a table without row keys, held in
/// memory. A bookmark is the row's place in the query's result. Every change is refused with 3027.
class SnapshotRecordset final : public RecordsetBase {
public:
    static DaoResult<std::shared_ptr<Recordset>> Open(std::shared_ptr<Connection> connection,
                                                      const std::string& name,
                                                      const std::string& query,
                                                      std::vector<std::string> filters);

    DaoError AddNew() override;
    DaoError Edit() override;
    using RecordsetBase::Set;
    DaoError Set(std::size_t index, const DaoValue& value) override;
    DaoError Update() override;
    void CancelUpdate() override {}
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
    std::int64_t ChangeStamp() const override { return 0; }  // the rows in memory never change

private:
    SnapshotRecordset(std::shared_ptr<Connection> connection, const std::string& name,
                      std::string query, std::vector<std::string> filters);
    DaoError LoadRows();
    DaoResult<Statement> PrepareTest(const std::string& expression);
    /// Places in `rows_` for which the condition is true.
    DaoResult<std::vector<std::size_t>> MatchingRows(const std::string& expression);
    DaoResult<bool> Test(Statement& test, const Row& row);

    std::string query_;
    std::vector<std::string> kept_;  ///< conditions of the dialect that its rows meet
    std::vector<Row> rows_;
};

}  // namespace mailvane
