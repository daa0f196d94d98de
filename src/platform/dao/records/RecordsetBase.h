#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/dao/records/Keyset.h"
#include "platform/dao/records/Recordset.h"

namespace mailvane {

class Connection;
class Statement;

using Row = std::vector<DaoValue>;

/// What is the same for every recordset: the walk over a keyset, the cached current row, and the
/// search. Where rows come from, and whether they can be changed, is for the kinds to say.
class RecordsetBase : public Recordset {
public:
    const std::string& Name() const override { return name_; }
    bool IsOpen() const override;
    void Close() override;

    DaoError MoveFirst() override;
    DaoError MoveLast() override;
    DaoError MoveNext() override;
    DaoError MovePrevious() override;
    bool BeginOfFile() const override;
    bool EndOfFile() const override;
    std::int64_t RecordCount() const override;

    DaoResult<Bookmark> GetBookmark() const override;
    DaoError SetBookmark(Bookmark bookmark) override;
    DaoResult<Bookmark> BookmarkAt(std::size_t position) const override;
    DaoResult<std::size_t> PositionOf(Bookmark bookmark) const override;
    DaoResult<std::vector<Row>> ReadRows(std::size_t first, std::size_t count) const override;

    const std::vector<Field>& Fields() const override { return fields_; }
    DaoResult<DaoValue> Get(const std::string& field) const override;
    DaoResult<DaoValue> Get(std::size_t index) const override;
    DaoError Set(const std::string& field, const DaoValue& value) override;
    DaoError Set(std::size_t index, const DaoValue& value) override = 0;

    DaoError FindFirst(const std::string& condition) override;
    DaoError FindNext(const std::string& condition) override;
    bool NoMatch() const override { return noMatch_; }

    void SetFilter(const std::string& condition) override { filter_ = condition; }
    DaoError Requery() override;

protected:
    RecordsetBase(std::shared_ptr<Connection> connection, std::string name);

    /// The keys of the rows, in order.
    virtual DaoError LoadKeys(Keyset& keys) = 0;
    /// The row with that key; an empty result when it has gone.
    virtual DaoResult<std::optional<Row>> ReadRow(std::int64_t key) const = 0;
    /// A condition of the dialect as SQLite's.
    virtual DaoResult<std::string> Translate(const std::string& condition) const = 0;
    /// Several conditions as one that is true where all of them are.
    DaoResult<std::string> TranslateAll(const std::vector<std::string>& conditions) const;
    /// The conditions, and the filter that was set if there is one.
    std::vector<std::string> WithFilter(std::vector<std::string> conditions) const;
    /// Slots of the rows for which the translated condition is true, ascending.
    virtual DaoResult<std::vector<std::size_t>> MatchingSlots(const std::string& expression) = 0;
    virtual DaoResult<bool> Matches(const std::string& expression, std::int64_t key) = 0;
    /// The value that an unfinished AddNew or Edit has for the column, if one is under way.
    virtual std::optional<DaoResult<DaoValue>> PendingValue(std::size_t index) const = 0;
    /// A number that differs when rows may have changed.
    virtual std::int64_t ChangeStamp() const = 0;

    DaoError CheckOpen() const;
    DaoResult<std::size_t> FieldIndex(const std::string& field) const;
    /// The slot that the recordset stands on; 3021 at either end, 3167 when its row was deleted.
    DaoResult<std::size_t> CurrentSlot() const;
    void ForgetRow() const { row_.reset(); }
    DaoResult<const Row*> CurrentRow() const;

    std::shared_ptr<Connection> connection_;
    std::string name_;
    std::vector<Field> fields_;
    Keyset keys_;
    std::string filter_;

private:
    enum class Place { Before, On, After };

    struct Search {
        std::string condition;
        std::string expression;
        std::vector<std::size_t> slots;
        std::int64_t stamp = 0;
    };

    DaoError CheckMove();
    void StandOn(std::size_t slot);
    DaoError StartSearch(const std::string& condition);
    DaoResult<std::optional<std::size_t>> NextMatch(std::size_t from);
    DaoError GoToMatch(const DaoResult<std::optional<std::size_t>>& match);

    Place place_ = Place::Before;
    std::size_t slot_ = 0;
    bool noMatch_ = false;
    Search search_;
    mutable std::optional<Row> row_;  ///< values of the current row, once they were asked for
    mutable std::int64_t rowStamp_ = 0;
};

}  // namespace mailvane
