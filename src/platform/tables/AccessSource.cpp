#include "platform/tables/AccessSource.h"

#include <mdbtools.h>

#include <algorithm>
#include <charconv>
#include <fstream>

#include "platform/os/DateTime.h"
#include "platform/tables/ReaderProcess.h"

namespace mailvane {

namespace {

constexpr std::size_t HeaderSize = 4096;
constexpr std::uint32_t SystemFlags = 0x80000002u;
/// A text may take this many bytes for each byte that its column has.
constexpr std::size_t DecodedBytes = 3;
constexpr std::uint32_t MemoLengthMask = 0x3FFFFFFF;
/// Seconds of computing for one row or table at most.
constexpr int Patience = 2;

std::string ReadHead(const std::string& path) {
    std::string head(HeaderSize, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(file.gcount()));
    return head;
}

std::int64_t SizeOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    return std::max<std::int64_t>(file.tellg(), 1);
}

std::string Unreadable(const std::string& path) {
    const bool encrypted = ReadHead(path).find("encryption") != std::string::npos;
    if (encrypted)
        return "The Access file '" + path +
               "' is protected with a password, and its content is encrypted. Remove the password "
               "in Access first.";
    return "The Access file '" + path +
           "' cannot be read: it is damaged, or protected with a password.";
}

SourceType TypeOf(const MdbColumn& column) {
    switch (column.col_type) {
        case MDB_BOOL:
            return SourceType::Boolean;
        case MDB_BYTE:
            return SourceType::Byte;
        case MDB_INT:
            return SourceType::Integer;
        case MDB_LONGINT:
            return SourceType::Long;
        case MDB_MONEY:
            return SourceType::Currency;
        case MDB_FLOAT:
            return SourceType::Single;
        case MDB_DOUBLE:
            return SourceType::Double;
        case MDB_DATETIME:
            return SourceType::Date;
        case MDB_BINARY:
        case MDB_OLE:
            return SourceType::Bytes;
        case MDB_MEMO:
            return SourceType::Memo;
        case MDB_NUMERIC:
            return SourceType::Unknown;  // more digits than any of ours holds
        default:
            return SourceType::Text;
    }
}

/// The fewest digits that read back as the same number.
template <class Number>
std::string ExactText(Number number) {
    char digits[64];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    return std::string(digits, end);
}

/// Takes over a text that the library has allocated.
std::string TakeText(char* text) {
    if (text == nullptr) return {};
    std::string copy(text);
    g_free(text);
    return copy;
}

/// One table, read inside a reading process.
class AccessTable {
public:
    AccessTable(MdbHandle& file, MdbTableDef& table) : file_(file), table_(table) {}

    void SayColumns(FrameWriter& frames) const {
        for (guint i = 0; i < table_.columns->len; ++i) {
            const MdbColumn& column = Column(i);
            frames.Begin(frame::Column);
            frames.Put(std::string_view(column.name));
            frames.Put(static_cast<std::int64_t>(TypeOf(column)));
            frames.Put(std::int64_t{column.is_long_auto});
            frames.Close();
        }
    }

    /// False when there are more rows than the file has room for: its pages lead in a circle.
    bool SayRows(FrameWriter& frames, std::int64_t fileSize) {
        mdb_rewind_table(&table_);
        for (std::int64_t row = 1; mdb_fetch_row(&table_) != 0; ++row) {
            if (row > fileSize) return false;
            frames.Begin(frame::Row);
            frames.Put(row);
            for (guint i = 0; i < table_.columns->len; ++i)
                frames.Put(Value(Column(i)));
            frames.Close();
        }
        return true;
    }

private:
    MdbColumn& Column(guint index) const {
        return *static_cast<MdbColumn*>(g_ptr_array_index(table_.columns, index));
    }

    Cell As(ValueKind kind, std::string text) {
        text_ = std::move(text);
        return {kind, text_};
    }

    Cell Value(MdbColumn& column) {
        const int start = column.cur_value_start;
        // The library keeps the mark of a false value in place of its length.
        if (column.col_type == MDB_BOOL)
            return As(ValueKind::Truth, column.cur_value_len != 0 ? "False" : "True");
        if (column.cur_value_len == 0) return {};
        switch (column.col_type) {
            case MDB_BYTE:
                return As(ValueKind::Number, std::to_string(mdb_pg_get_byte(&file_, start)));
            case MDB_INT:
                return As(
                    ValueKind::Number,
                    std::to_string(static_cast<std::int16_t>(mdb_pg_get_int16(&file_, start))));
            case MDB_LONGINT:
                return As(
                    ValueKind::Number,
                    std::to_string(static_cast<std::int32_t>(mdb_pg_get_int32(&file_, start))));
            case MDB_FLOAT:
                return As(ValueKind::Number, ExactText(mdb_pg_get_single(&file_, start)));
            case MDB_DOUBLE:
                return As(ValueKind::Number, ExactText(mdb_pg_get_double(&file_, start)));
            case MDB_MONEY:
                return As(ValueKind::Number, TakeText(mdb_money_to_string(&file_, start)));
            case MDB_NUMERIC:
                return As(ValueKind::Number,
                          TakeText(mdb_numeric_to_string(&file_, start, column.col_scale,
                                                         column.col_prec)));
            case MDB_DATETIME:
                return As(ValueKind::Date,
                          DateTime::FromSerial(mdb_pg_get_double(&file_, start)).Iso());
            case MDB_BINARY:
                return As(ValueKind::Bytes,
                          std::string(reinterpret_cast<const char*>(file_.pg_buf) + start,
                                      static_cast<std::size_t>(column.cur_value_len)));
            case MDB_OLE:
                return OleValue(column);
            case MDB_REPID:
                return As(ValueKind::Text, TakeText(mdb_uuid_to_string(file_.pg_buf, start)));
            case MDB_TEXT:
            case MDB_MEMO:
                return TextValue(column);
            default:
                return {};
        }
    }

    Cell OleValue(MdbColumn& column) {
        std::size_t size = 0;
        void* const bytes = mdb_ole_read_full(&file_, &column, &size);
        if (bytes == nullptr) return {};
        text_.assign(static_cast<const char*>(bytes), size);
        g_free(bytes);
        return {ValueKind::Bytes, text_};
    }

    /// The library cuts a text at its buffer's size, so that is made to fit.
    Cell TextValue(const MdbColumn& column) {
        auto length = static_cast<std::size_t>(column.cur_value_len);
        if (column.col_type == MDB_MEMO && length >= MDB_MEMO_OVERHEAD)
            length += static_cast<std::size_t>(mdb_pg_get_int32(&file_, column.cur_value_start)) &
                      MemoLengthMask;
        mdb_set_bind_size(&file_, length * DecodedBytes + 16);
        return As(ValueKind::Text,
                  TakeText(mdb_col_to_string(&file_, file_.pg_buf, column.cur_value_start,
                                             column.col_type, column.cur_value_len)));
    }

    MdbHandle& file_;
    MdbTableDef& table_;
    std::string text_;
};

/// In a reading process: the tables with their columns, and with a name that table's rows alone.
void ReadAccessFile(const std::string& path, const std::string& wanted, FrameWriter& frames) {
    MdbHandle* const file = mdb_open(path.c_str(), MDB_NOFLAGS);
    GPtrArray* const catalog = file ? mdb_read_catalog(file, MDB_TABLE) : nullptr;
    if (catalog == nullptr) return frames.Say(frame::Failure);
    for (guint i = 0; i < catalog->len; ++i) {
        auto* entry = static_cast<MdbCatalogEntry*>(g_ptr_array_index(catalog, i));
        const bool system = (static_cast<std::uint32_t>(entry->flags) & SystemFlags) != 0;
        if (entry->object_type != MDB_TABLE || system) continue;
        if (!wanted.empty() && wanted != entry->object_name) continue;
        MdbTableDef* const table = mdb_read_table(entry);
        if (table == nullptr || mdb_read_columns(table) == nullptr)
            return frames.Say(frame::Failure);
        frames.Say(frame::Table, entry->object_name);
        AccessTable reader(*file, *table);
        reader.SayColumns(frames);
        if (!wanted.empty() && !reader.SayRows(frames, SizeOf(path)))
            return frames.Say(frame::Failure);
    }
    frames.Say(frame::End);
}

SourceColumn ColumnIn(FrameBody body) {
    SourceColumn column;
    column.name = body.Text();
    column.type = static_cast<SourceType>(body.Number());
    column.autoNumber = body.Number() != 0;
    return column;
}

class AccessRows final : public SourceRows {
public:
    AccessRows(std::string path, std::unique_ptr<ReaderProcess> process)
        : path_(std::move(path)), process_(std::move(process)) {
        while ((more_ = Step()) && process_->Frames().Tag() != frame::Row)
            if (process_->Frames().Tag() == frame::Column)
                columns_.push_back(ColumnIn(process_->Frames().Body()));
        total_ = SizeOf(path_);
    }

    const std::vector<SourceColumn>& Columns() const override { return columns_; }
    bool Next(std::vector<Cell>& row) override {
        if (!more_) return false;
        if (given_ && !(more_ = Step())) return false;
        given_ = true;
        FrameBody body = process_->Frames().Body();
        place_ = body.Number();
        row.clear();
        while (!body.AtEnd())
            row.push_back(body.TakeCell());
        return true;
    }
    const std::string& Error() const override { return error_; }
    std::int64_t Place() const override { return place_; }
    std::int64_t Done() const override { return std::min(process_->Frames().Passed(), total_); }
    std::int64_t Total() const override { return total_; }

private:
    /// The next frame; false at the end, which must have been told.
    bool Step() {
        const bool came = process_->Frames().Next();
        if (came && process_->Frames().Tag() == frame::End) return false;
        if (came && process_->Frames().Tag() != frame::Failure) return true;
        error_ = Unreadable(path_);
        return false;
    }

    std::string path_;
    std::unique_ptr<ReaderProcess> process_;
    std::vector<SourceColumn> columns_;
    bool more_ = false;
    bool given_ = false;  ///< the row that stands in the frame has been given
    std::int64_t place_ = 0;
    std::int64_t total_ = 0;
    std::string error_;
};

class AccessSource final : public TableSource {
public:
    AccessSource(std::string path, std::vector<std::string> tables)
        : path_(std::move(path)), tables_(std::move(tables)) {}

    const std::vector<std::string>& Tables() const override { return tables_; }
    bool NamesColumns() const override { return true; }
    std::unique_ptr<SourceRows> Open(std::size_t table, bool, std::string& error) override {
        const std::string name = tables_.at(table);
        auto process = ReaderProcess::Start(
            [&](FrameWriter& frames) { ReadAccessFile(path_, name, frames); }, Patience);
        if (!process) {
            error = "The file '" + path_ + "' cannot be read: no process can be started.";
            return nullptr;
        }
        auto rows = std::make_unique<AccessRows>(path_, std::move(process));
        error = rows->Error();
        if (!error.empty()) return nullptr;
        return rows;
    }

private:
    std::string path_;
    std::vector<std::string> tables_;
};

}  // namespace

bool IsAccessFile(const std::string& path) {
    const std::string head = ReadHead(path);
    const std::string_view mark =
        std::string_view(head).substr(std::min<std::size_t>(4, head.size()));
    return mark.starts_with("Standard Jet DB") || mark.starts_with("Standard ACE DB");
}

std::unique_ptr<TableSource> OpenAccessFile(const std::string& path, std::string& error) {
    auto process = ReaderProcess::Start(
        [&](FrameWriter& frames) { ReadAccessFile(path, "", frames); }, Patience);
    std::vector<std::string> tables;
    bool complete = false;
    while (process && process->Frames().Next()) {
        const char tag = process->Frames().Tag();
        if (tag == frame::Table) tables.emplace_back(process->Frames().Body().Text());
        complete = tag == frame::End;
        if (complete || tag == frame::Failure) break;
    }
    if (complete) return std::make_unique<AccessSource>(path, std::move(tables));
    error = Unreadable(path);
    return nullptr;
}

}  // namespace mailvane
