#include "platform/dao/DaoError.h"

namespace mailvane {

namespace {

struct Description {
    int number;
    const char* text;
};

constexpr Description Descriptions[] = {
    {dao_error::ObjectNotSet, "Object variable not set"},
    {dao_error::InvalidNull, "Invalid use of Null"},
    {dao_error::EngineFailure, "Reserved error (|)."},
    {dao_error::TableExists, "Table '|' already exists."},
    {dao_error::UpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit."},
    {dao_error::NoCurrentRecord, "No current record."},
    {dao_error::DuplicateKey,
     "The changes you requested to the table were not successful because they would create "
     "duplicate values in the index, primary key, or relationship."},
    {dao_error::FileNotFound, "Could not find file '|'."},
    {dao_error::DiskFull, "Not enough space on disk."},
    {dao_error::ReadOnly, "Cannot update. Database or object is read-only."},
    {dao_error::DiskError, "Disk error: |."},
    {dao_error::DamagedFile,
     "Cannot open database '|'. It may not be a database that your application recognizes, or the "
     "file may be corrupt."},
    {dao_error::CannotOpenFile, "The database engine cannot open the file '|'."},
    {dao_error::NullInPrimaryKey, "Index or primary key cannot contain a Null value."},
    {dao_error::TooFewParameters, "Too few parameters."},
    {dao_error::IsSelectQuery, "Cannot execute a select query."},
    {dao_error::QuerySyntax, "Syntax error in query expression '|'."},
    {dao_error::TableNotFound, "The database engine cannot find the input table or query '|'."},
    {dao_error::InvalidName,
     "'|' is not a valid name. Make sure that it does not include invalid characters or "
     "punctuation and that it is not too long."},
    {dao_error::UnknownFieldInInsert,
     "The INSERT INTO statement contains the following unknown field name: '|'."},
    {dao_error::FieldTooSmall,
     "The field is too small to accept the amount of data you attempted to add."},
    {dao_error::FieldNotUpdatable, "Field '|' cannot be updated."},
    {dao_error::RecordDeleted, "Record is deleted."},
    {dao_error::FieldDefinedTwice, "Cannot define field '|' more than once."},
    {dao_error::DatabaseExists, "Database already exists."},
    {dao_error::Locked, "Could not update; currently locked by another user."},
    {dao_error::NoFieldDefined, "No field defined--cannot append TableDef or Index."},
    {dao_error::ItemNotFound, "Item not found in this collection."},
    {dao_error::PrimaryKeyExists, "Primary key already exists."},
    {dao_error::IndexExists, "Index '|' already exists."},
    {dao_error::RequiredField,
     "The field '|' cannot contain a Null value because the Required property for this field is "
     "set to True."},
    {dao_error::ValidationRule,
     "One or more values are prohibited by the validation rule '|' of the table."},
    {dao_error::UnrecognizedFormat, "Unrecognized database format '|'."},
    {dao_error::OpenedExclusively, "The database is opened exclusively by another user."},
    {dao_error::TableDoesNotExist, "Table '|' does not exist."},
    {dao_error::ObjectInvalid, "Object invalid or no longer set."},
    {dao_error::DataConversion, "Data type conversion error."},
};

}  // namespace

bool IsStorageFailure(const DaoError& error) {
    using namespace dao_error;
    for (const int number : {DiskFull, ReadOnly, DiskError, DamagedFile, CannotOpenFile})
        if (error.number == number) return true;
    return false;
}

DaoError MakeDaoError(int number, const std::string& subject) {
    for (const Description& description : Descriptions) {
        if (description.number != number) continue;
        std::string text = description.text;
        if (const std::size_t bar = text.find('|'); bar != std::string::npos)
            text.replace(bar, 1, subject);
        return {number, std::move(text)};
    }
    return {number, subject};
}

}  // namespace mailvane
