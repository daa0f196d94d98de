#pragma once

#include <cassert>
#include <optional>
#include <string>
#include <utility>

namespace mailvane {

/// Outcome of an engine operation: number 0 is success, any other is one of the engine's known
/// error numbers with its description, which is what message boxes show.
struct [[nodiscard]] DaoError {
    int number = 0;
    std::string description;

    bool Failed() const { return number != 0; }
    bool Ok() const { return number == 0; }
    /// Says at the call that a failure is deliberately passed over.
    void Ignore() const {}
};

/// A value or the error that stood in its way.
template <class T>
class [[nodiscard]] DaoResult {
public:
    DaoResult(T value) : value_(std::move(value)) {}
    DaoResult(DaoError error) : error_(std::move(error)) { assert(error_.Failed()); }

    bool Ok() const { return value_.has_value(); }
    bool Failed() const { return !value_.has_value(); }
    const DaoError& Error() const { return error_; }

    T& operator*() { return *value_; }
    const T& operator*() const { return *value_; }
    T* operator->() { return &*value_; }
    const T* operator->() const { return &*value_; }
    T ValueOr(T fallback) const { return value_ ? *value_ : std::move(fallback); }

private:
    std::optional<T> value_;
    DaoError error_;
};

/// The engine's numbers that the program tests for or raises.
namespace dao_error {
inline constexpr int ObjectNotSet = 91;
inline constexpr int InvalidNull = 94;
inline constexpr int EngineFailure = 3000;
inline constexpr int TableExists = 3010;
inline constexpr int UpdateWithoutEdit = 3020;
inline constexpr int NoCurrentRecord = 3021;
inline constexpr int DuplicateKey = 3022;
inline constexpr int FileNotFound = 3024;
inline constexpr int DiskFull = 3026;
inline constexpr int ReadOnly = 3027;
inline constexpr int DiskError = 3043;
inline constexpr int DamagedFile = 3049;
inline constexpr int CannotOpenFile = 3051;
inline constexpr int NullInPrimaryKey = 3058;
inline constexpr int TooFewParameters = 3061;
inline constexpr int IsSelectQuery = 3065;
inline constexpr int QuerySyntax = 3075;
inline constexpr int TableNotFound = 3078;
inline constexpr int InvalidName = 3125;
inline constexpr int UnknownFieldInInsert = 3127;
inline constexpr int FieldTooSmall = 3163;
inline constexpr int FieldNotUpdatable = 3164;
inline constexpr int RecordDeleted = 3167;
inline constexpr int FieldDefinedTwice = 3191;
inline constexpr int DatabaseExists = 3204;
inline constexpr int Locked = 3260;
inline constexpr int NoFieldDefined = 3264;
inline constexpr int ItemNotFound = 3265;
inline constexpr int PrimaryKeyExists = 3283;
inline constexpr int IndexExists = 3284;
inline constexpr int RequiredField = 3314;
inline constexpr int ValidationRule = 3317;
inline constexpr int UnrecognizedFormat = 3343;
inline constexpr int OpenedExclusively = 3356;
inline constexpr int TableDoesNotExist = 3376;
inline constexpr int ObjectInvalid = 3420;
inline constexpr int DataConversion = 3421;
}  // namespace dao_error

/// The file takes no change at all (disk full, disk error, read-only, damaged): the next row would
/// fare no better.
bool IsStorageFailure(const DaoError& error);

/// The error with that number and its standard description; `subject` replaces the bar in it. A
/// number without one has the subject as its description.
DaoError MakeDaoError(int number, const std::string& subject = {});

}  // namespace mailvane
