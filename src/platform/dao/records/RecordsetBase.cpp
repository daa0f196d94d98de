#include "platform/dao/records/RecordsetBase.h"

#include <algorithm>
#include <utility>

#include "platform/dao/file/Connection.h"

namespace mailvane {

RecordsetBase::RecordsetBase(std::shared_ptr<Connection> connection, std::string name)
    : connection_(std::move(connection)), name_(std::move(name)) {}

bool RecordsetBase::IsOpen() const {
    return connection_ != nullptr && connection_->IsOpen();
}

void RecordsetBase::Close() {
    CancelUpdate();
    connection_.reset();
    keys_.Clear();
    search_ = Search();
    ForgetRow();
}

DaoError RecordsetBase::CheckOpen() const {
    return IsOpen() ? DaoError() : MakeDaoError(dao_error::ObjectInvalid);
}

// --- Position -------------------------------------------------------------------------------

DaoError RecordsetBase::CheckMove() {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    CancelUpdate();
    return {};
}

void RecordsetBase::StandOn(std::size_t slot) {
    place_ = Place::On;
    slot_ = slot;
    ForgetRow();
}

DaoError RecordsetBase::MoveFirst() {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    const std::optional<std::size_t> slot = keys_.FirstFrom(0);
    if (!slot) return MakeDaoError(dao_error::NoCurrentRecord);
    StandOn(*slot);
    return {};
}

DaoError RecordsetBase::MoveLast() {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    const std::optional<std::size_t> slot = keys_.LastBefore(keys_.Slots());
    if (!slot) return MakeDaoError(dao_error::NoCurrentRecord);
    StandOn(*slot);
    return {};
}

DaoError RecordsetBase::MoveNext() {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    if (EndOfFile()) return MakeDaoError(dao_error::NoCurrentRecord);
    const std::optional<std::size_t> slot =
        keys_.FirstFrom(place_ == Place::Before ? 0 : slot_ + 1);
    if (slot)
        StandOn(*slot);
    else
        place_ = Place::After;
    return {};
}

DaoError RecordsetBase::MovePrevious() {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    if (BeginOfFile()) return MakeDaoError(dao_error::NoCurrentRecord);
    const std::optional<std::size_t> slot =
        keys_.LastBefore(place_ == Place::After ? keys_.Slots() : slot_);
    if (slot)
        StandOn(*slot);
    else
        place_ = Place::Before;
    return {};
}

bool RecordsetBase::BeginOfFile() const {
    return place_ == Place::Before || (place_ == Place::After && keys_.Count() == 0);
}

bool RecordsetBase::EndOfFile() const {
    return place_ == Place::After || (place_ == Place::Before && keys_.Count() == 0);
}

std::int64_t RecordsetBase::RecordCount() const {
    return static_cast<std::int64_t>(keys_.Count());
}

DaoResult<std::size_t> RecordsetBase::CurrentSlot() const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    if (place_ != Place::On) return MakeDaoError(dao_error::NoCurrentRecord);
    if (keys_.IsRemoved(slot_)) return MakeDaoError(dao_error::RecordDeleted);
    return slot_;
}

DaoResult<Bookmark> RecordsetBase::GetBookmark() const {
    const DaoResult<std::size_t> slot = CurrentSlot();
    if (slot.Failed()) return slot.Error();
    return keys_.KeyAt(*slot);
}

DaoError RecordsetBase::SetBookmark(Bookmark bookmark) {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    const std::optional<std::size_t> slot = keys_.SlotOfKey(bookmark);
    if (!slot) return MakeDaoError(dao_error::NoCurrentRecord);
    StandOn(*slot);
    return {};
}

DaoResult<Bookmark> RecordsetBase::BookmarkAt(std::size_t position) const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    const std::optional<std::size_t> slot = keys_.SlotOfPosition(position);
    if (!slot) return MakeDaoError(dao_error::NoCurrentRecord);
    return keys_.KeyAt(*slot);
}

DaoResult<std::size_t> RecordsetBase::PositionOf(Bookmark bookmark) const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    const std::optional<std::size_t> slot = keys_.SlotOfKey(bookmark);
    if (!slot) return MakeDaoError(dao_error::NoCurrentRecord);
    return keys_.PositionOfSlot(*slot);
}

// --- Values ---------------------------------------------------------------------------------

DaoResult<std::vector<Row>> RecordsetBase::ReadRows(std::size_t first, std::size_t count) const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    std::vector<Row> rows;
    const DaoError outcome = connection_->InOneRead([&]() -> DaoError {
        std::optional<std::size_t> slot = keys_.SlotOfPosition(first);
        while (slot && rows.size() < count) {
            DaoResult<std::optional<Row>> row = ReadRow(keys_.KeyAt(*slot));
            if (row.Failed()) return row.Error();
            rows.push_back(*row ? std::move(**row) : Row(fields_.size()));
            slot = keys_.FirstFrom(*slot + 1);
        }
        return {};
    });
    if (outcome.Failed()) return outcome;
    return rows;
}

DaoResult<std::size_t> RecordsetBase::FieldIndex(const std::string& field) const {
    const auto found = std::find_if(fields_.begin(), fields_.end(),
                                    [&](const Field& one) { return SameName(one.name, field); });
    if (found == fields_.end()) return MakeDaoError(dao_error::ItemNotFound);
    return static_cast<std::size_t>(found - fields_.begin());
}

DaoResult<const Row*> RecordsetBase::CurrentRow() const {
    const DaoResult<std::size_t> slot = CurrentSlot();
    if (slot.Failed()) return slot.Error();
    if (!row_ || rowStamp_ != ChangeStamp()) {
        DaoResult<std::optional<Row>> row = ReadRow(keys_.KeyAt(*slot));
        if (row.Failed()) return row.Error();
        if (!*row) return MakeDaoError(dao_error::RecordDeleted);
        row_ = std::move(*row);
        rowStamp_ = ChangeStamp();
    }
    return &*row_;
}

DaoResult<DaoValue> RecordsetBase::Get(const std::string& field) const {
    const DaoResult<std::size_t> index = FieldIndex(field);
    if (index.Failed()) return index.Error();
    return Get(*index);
}

DaoResult<DaoValue> RecordsetBase::Get(std::size_t index) const {
    if (DaoError closed = CheckOpen(); closed.Failed()) return closed;
    if (index >= fields_.size()) return MakeDaoError(dao_error::ItemNotFound);
    if (std::optional<DaoResult<DaoValue>> pending = PendingValue(index)) return *pending;
    const DaoResult<const Row*> row = CurrentRow();
    if (row.Failed()) return row.Error();
    return (**row)[index];
}

DaoError RecordsetBase::Set(const std::string& field, const DaoValue& value) {
    const DaoResult<std::size_t> index = FieldIndex(field);
    if (index.Failed()) return index.Error();
    return Set(*index, value);
}

DaoError RecordsetBase::Requery() {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    Keyset keys;
    if (DaoError failed = LoadKeys(keys); failed.Failed()) return failed;
    keys.Tidy();
    keys_ = std::move(keys);
    search_ = Search();
    ForgetRow();
    place_ = keys_.Count() > 0 ? Place::On : Place::Before;
    slot_ = 0;
    return {};
}

// --- Search ---------------------------------------------------------------------------------

DaoError RecordsetBase::FindFirst(const std::string& condition) {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    if (DaoError failed = StartSearch(condition); failed.Failed()) return failed;
    return GoToMatch(NextMatch(0));
}

DaoError RecordsetBase::FindNext(const std::string& condition) {
    if (DaoError refused = CheckMove(); refused.Failed()) return refused;
    if (search_.expression.empty() || search_.condition != condition)
        if (DaoError failed = StartSearch(condition); failed.Failed()) return failed;
    if (place_ == Place::After) return GoToMatch(std::optional<std::size_t>());
    return GoToMatch(NextMatch(place_ == Place::Before ? 0 : slot_ + 1));
}

/// They are joined when each has been read by itself, so that none can change what another means.
DaoResult<std::string> RecordsetBase::TranslateAll(
    const std::vector<std::string>& conditions) const {
    std::string all;
    for (const std::string& condition : conditions) {
        const DaoResult<std::string> expression = Translate(condition);
        if (expression.Failed()) return expression.Error();
        all += (all.empty() ? "(" : " AND (") + *expression + ")";
    }
    return all;
}

std::vector<std::string> RecordsetBase::WithFilter(std::vector<std::string> conditions) const {
    if (!filter_.empty()) conditions.push_back(filter_);
    return conditions;
}

DaoError RecordsetBase::StartSearch(const std::string& condition) {
    search_ = Search();
    DaoResult<std::string> expression = Translate(condition);
    if (expression.Failed()) return expression.Error();
    const std::int64_t stamp = ChangeStamp();
    DaoResult<std::vector<std::size_t>> slots = MatchingSlots(*expression);
    if (slots.Failed()) return slots.Error();
    search_ = Search{condition, std::move(*expression), std::move(*slots), stamp};
    return {};
}

DaoResult<std::optional<std::size_t>> RecordsetBase::NextMatch(std::size_t from) {
    if (search_.stamp == ChangeStamp()) {
        const auto next = std::lower_bound(search_.slots.begin(), search_.slots.end(), from);
        if (next == search_.slots.end()) return std::optional<std::size_t>();
        return std::optional(*next);
    }
    // Rows have changed since the search began: the ones ahead are tested one by one, so that a
    // loop that finds and changes rows still passes over the table only once.
    std::optional<std::size_t> slot;
    const DaoError outcome = connection_->InOneRead([&]() -> DaoError {
        for (slot = keys_.FirstFrom(from); slot; slot = keys_.FirstFrom(*slot + 1)) {
            const DaoResult<bool> matches = Matches(search_.expression, keys_.KeyAt(*slot));
            if (matches.Failed()) return matches.Error();
            if (*matches) return {};
        }
        return {};
    });
    if (outcome.Failed()) return outcome;
    return slot;
}

DaoError RecordsetBase::GoToMatch(const DaoResult<std::optional<std::size_t>>& match) {
    if (match.Failed()) return match.Error();
    noMatch_ = !match->has_value();
    if (!noMatch_) StandOn(**match);
    return {};
}

}  // namespace mailvane
