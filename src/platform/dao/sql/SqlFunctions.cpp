#include "platform/dao/sql/SqlFunctions.h"

#include <sqlite3.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/dao/sql/SqlLike.h"
#include "platform/dao/structure/FieldTypes.h"

namespace mailvane {
namespace {

bool IsNull(sqlite3_value* value) {
    return sqlite3_value_type(value) == SQLITE_NULL;
}

/// The bytes of a value as text; they live as long as the value.
std::string_view TextOf(sqlite3_value* value) {
    const void* bytes = sqlite3_value_text(value);
    if (bytes == nullptr) return {};
    return {static_cast<const char*>(bytes), static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

void AnswerText(sqlite3_context* context, std::string_view text) {
    sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
}

void Like(sqlite3_context* context, int, sqlite3_value** arguments) {
    if (IsNull(arguments[0]) || IsNull(arguments[1])) return;
    auto* pattern = static_cast<LikePattern*>(sqlite3_get_auxdata(context, 0));
    if (pattern == nullptr) {
        auto fresh = std::make_unique<LikePattern>(TextOf(arguments[0]));
        sqlite3_result_int(context, fresh->Matches(TextOf(arguments[1])));
        // SQLite keeps it for the next rows if the pattern is constant, and deletes it in the end.
        sqlite3_set_auxdata(context, 0, fresh.release(),
                            [](void* kept) { delete static_cast<LikePattern*>(kept); });
        return;
    }
    sqlite3_result_int(context, pattern->Matches(TextOf(arguments[1])));
}

/// A stored value as what its column's type says it is; a date that is none stays a text.
DaoValue ValueOf(sqlite3_value* value, FieldType type) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_NULL:
            return {};
        case SQLITE_INTEGER: {
            const std::int64_t number = sqlite3_value_int64(value);
            return type == FieldType::Boolean ? DaoValue(number != 0) : DaoValue(number);
        }
        case SQLITE_FLOAT:
            return sqlite3_value_double(value);
        default: {
            std::string text(TextOf(value));
            if (type != FieldType::Date) return text;
            const std::optional<DateTime> date = DateTime::Parse(text);
            return date ? DaoValue(*date) : DaoValue(text);
        }
    }
}

void Convert(sqlite3_context* context, int, sqlite3_value** arguments) {
    const auto from = static_cast<FieldType>(sqlite3_value_int(arguments[1]));
    Field target;
    target.type = static_cast<FieldType>(sqlite3_value_int(arguments[2]));
    target.size = sqlite3_value_int(arguments[3]);
    if (IsNull(arguments[0])) return;
    const DaoResult<DaoValue> converted = ConvertForField(ValueOf(arguments[0], from), target);
    if (converted.Failed()) {
        if (converted.Error().number == dao_error::FieldTooSmall)
            sqlite3_result_error_toobig(context);
        return;
    }
    const DaoValue& result = *converted;
    if (const auto* truth = std::get_if<bool>(&result.Raw())) {
        sqlite3_result_int(context, *truth);
    } else if (const auto* whole = std::get_if<std::int64_t>(&result.Raw())) {
        sqlite3_result_int64(context, *whole);
    } else if (const auto* fraction = std::get_if<double>(&result.Raw())) {
        sqlite3_result_double(context, *fraction);
    } else if (const auto* text = std::get_if<std::string>(&result.Raw())) {
        AnswerText(context, *text);
    } else if (const auto* date = std::get_if<DateTime>(&result.Raw())) {
        AnswerText(context, date->Iso());
    }
}

void Concat(sqlite3_context* context, int count, sqlite3_value** arguments) {
    if (std::all_of(arguments, arguments + count, IsNull)) return;
    std::string joined;
    for (int i = 0; i < count; ++i)
        joined += TextOf(arguments[i]);
    AnswerText(context, joined);
}

}  // namespace

int RegisterSqlFunctions(sqlite3* database) {
    struct Entry {
        const char* name;
        int arguments;
        void (*function)(sqlite3_context*, int, sqlite3_value**);
    };
    const Entry entries[] = {
        {"mv_like", 2, Like}, {"mv_convert", 4, Convert}, {"mv_concat", -1, Concat}};
    for (const Entry& entry : entries) {
        const int result = sqlite3_create_function_v2(database, entry.name, entry.arguments,
                                                      SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                                      entry.function, nullptr, nullptr, nullptr);
        if (result != SQLITE_OK) return result;
    }
    return SQLITE_OK;
}

}  // namespace mailvane
