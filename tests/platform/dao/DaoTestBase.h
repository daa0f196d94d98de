#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/dao/file/Workspace.h"
#include "support/TempFolder.h"

namespace mailvane {

inline testing::AssertionResult IsDone(const char* operation, const DaoError& outcome) {
    if (outcome.Ok()) return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << operation << " failed: " << outcome.number << " " << outcome.description;
}

#define EXPECT_DONE(operation) EXPECT_PRED_FORMAT1(IsDone, operation)
#define EXPECT_FAILS(operation, expectedNumber) EXPECT_EQ((operation).number, expectedNumber)

/// Sets one value of the row where the recordset stands.
inline DaoError Change(Recordset& recordset, const std::string& field, const DaoValue& value) {
    DaoError failed = recordset.Edit();
    if (failed.Ok()) failed = recordset.Set(field, value);
    return failed.Ok() ? recordset.Update() : failed;
}

/// A fresh database in a folder of its own.
class DaoTest : public testing::Test {
protected:
    DaoTest() : path_(folder_.File("test.db")) {
        database_ = workspace_->CreateDatabase(path_).ValueOr(nullptr);
    }

    static Field Column(const std::string& name, FieldType type = FieldType::Text, int size = 0) {
        Field field;
        field.name = name;
        field.type = type;
        field.size = size;
        return field;
    }

    static Field AutoNumber(const std::string& name = "ID") {
        Field field = Column(name, FieldType::Long);
        field.attributes = AutoIncrementAttribute;
        return field;
    }

    void Reopen(const std::string& path) {
        database_ = workspace_->OpenDatabase(path).ValueOr(nullptr);
        ASSERT_NE(database_, nullptr);
    }

    void MakeTable(const std::string& name, const std::vector<Field>& fields,
                   const std::vector<Index>& indexes = {}) {
        EXPECT_DONE(database_->AppendTable({name, 0, fields, indexes}));
    }

    std::shared_ptr<Recordset> Open(const std::string& source) {
        auto recordset = database_->OpenRecordset(source);
        EXPECT_TRUE(recordset.Ok()) << source << ": " << recordset.Error().description;
        return recordset.ValueOr(nullptr);
    }

    std::int64_t Execute(const std::string& sql) {
        const auto changed = database_->Execute(sql);
        EXPECT_TRUE(changed.Ok()) << sql << ": " << changed.Error().description;
        return changed.ValueOr(-1);
    }

    static DaoError AddRow(Recordset& recordset, const std::vector<DaoValue>& values) {
        if (DaoError failed = recordset.AddNew(); failed.Failed()) return failed;
        for (std::size_t i = 0; i < values.size(); ++i)
            if (DaoError failed = recordset.Set(i, values[i]); failed.Failed()) return failed;
        return recordset.Update();
    }

    /// A table "People" of Name and Age with a row for each name, in that order, aged 1, 2, 3...
    void MakePeople(const std::vector<std::string>& names) {
        MakeTable("People", {Column("Name"), Column("Age", FieldType::Long)});
        const auto people = Open("People");
        for (std::size_t i = 0; i < names.size(); ++i)
            EXPECT_DONE(AddRow(*people, {names[i], static_cast<int>(i) + 1}));
    }

    static std::string TextOf(const DaoResult<DaoValue>& value) {
        if (value.Failed()) return "error " + std::to_string(value.Error().number);
        return value->IsNull() ? "Null" : value->TextOrEmpty();
    }

    /// The first column of every row, from the first to the last, joined by blanks.
    static std::string Walk(Recordset& recordset) {
        std::string text;
        if (recordset.MoveFirst().Failed()) return text;
        while (!recordset.EndOfFile()) {
            text += (text.empty() ? "" : " ") + TextOf(recordset.Get(0));
            EXPECT_DONE(recordset.MoveNext());
        }
        return text;
    }

    std::string Walk(const std::string& source) { return Walk(*Open(source)); }

    test::TempFolder folder_;
    std::string path_;
    std::shared_ptr<Workspace> workspace_ = Workspace::Create();
    std::shared_ptr<Database> database_;
};

}  // namespace mailvane
