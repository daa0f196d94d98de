#include "platform/dao/DaoTestBase.h"

namespace mailvane {
namespace {

class RecordsetTest : public DaoTest {
protected:
    /// Goes to the next, previous, first or last row (n, p, f, l) or deletes this one (d). The
    /// number of the step that failed, or the first value of the row where the steps lead.
    static std::string After(Recordset& rows, const char* steps) {
        for (; *steps != '\0'; ++steps) {
            const DaoError outcome = *steps == 'n'   ? rows.MoveNext()
                                     : *steps == 'p' ? rows.MovePrevious()
                                     : *steps == 'f' ? rows.MoveFirst()
                                     : *steps == 'l' ? rows.MoveLast()
                                                     : rows.Delete();
            if (outcome.Failed()) return "failed " + std::to_string(outcome.number);
        }
        return TextOf(rows.Get(0));
    }
};

TEST_F(RecordsetTest, WalksToBothEndsAndNoFurther) {
    MakePeople({"Ann", "Bob"});
    const auto people = Open("People");
    const std::pair<const char*, const char*> rows[] = {
        {"", "Ann"},  {"nn", "error 3021"}, {"n", "failed 3021"}, {"p", "Bob"},
        {"f", "Ann"}, {"p", "error 3021"},  {"p", "failed 3021"}, {"n", "Ann"},
    };
    for (const auto& [steps, shown] : rows) {
        EXPECT_EQ(After(*people, steps), shown) << steps;
        const bool outside = std::string(shown).ends_with("3021");
        EXPECT_EQ(people->EndOfFile() || people->BeginOfFile(), outside) << steps;
    }
    EXPECT_EQ(TextOf(people->Get("name")), "Ann");
    EXPECT_EQ(TextOf(people->Get("Nothing")), "error 3265");
    EXPECT_EQ(TextOf(people->Get(2)), "error 3265");
}

TEST_F(RecordsetTest, EmptyTableHasNoCurrentRow) {
    MakePeople({});
    const auto people = Open("People");
    EXPECT_TRUE(people->BeginOfFile() && people->EndOfFile());
    for (const char* step : {"f", "l", "d"})
        EXPECT_EQ(After(*people, step), "failed 3021") << step;
    EXPECT_FAILS(people->Edit(), dao_error::NoCurrentRecord);
    EXPECT_DONE(AddRow(*people, {"Ann", 1}));
    EXPECT_EQ(people->RecordCount(), 1);
    EXPECT_EQ(After(*people, "f"), "Ann");
}

TEST_F(RecordsetTest, RowsAddedJoinTheEndHereAndComeElsewhereByRequery) {
    MakePeople({"Ann", "Bob"});
    const auto other = Open("People");
    const auto people = Open("SELECT * FROM People ORDER BY Name DESC");
    EXPECT_DONE(people->MoveNext());
    EXPECT_DONE(AddRow(*people, {"Zoe", 9}));
    EXPECT_EQ(TextOf(people->Get(0)), "Ann");
    EXPECT_EQ(Walk(*people), "Bob Ann Zoe");
    EXPECT_DONE(people->SetBookmark(*people->LastModified()));
    EXPECT_EQ(TextOf(people->Get("Age")), "9");
    EXPECT_EQ(Walk(*other), "Ann Bob");
    EXPECT_DONE(other->Requery());
    EXPECT_EQ(Walk(*other), "Ann Bob Zoe");
    EXPECT_DONE(people->Requery());
    EXPECT_EQ(Walk(*people), "Zoe Bob Ann");
}

TEST_F(RecordsetTest, EditShowsItsValuesAndAMoveDropsThem) {
    MakePeople({"Ann", "Bob"});
    const auto people = Open("People");
    EXPECT_FAILS(people->Set("Name", "x"), dao_error::UpdateWithoutEdit);
    EXPECT_DONE(people->Edit());
    EXPECT_DONE(people->Set("Age", "41"));
    EXPECT_EQ(TextOf(people->Get("Age")), "41");
    EXPECT_EQ(TextOf(people->Get("Name")), "Ann");
    EXPECT_FAILS(people->Set("Age", "abc"), dao_error::DataConversion);
    EXPECT_DONE(people->MoveNext());
    EXPECT_FAILS(people->Update(), dao_error::UpdateWithoutEdit);
    EXPECT_EQ(Walk("SELECT Age FROM People"), "1 2");
    EXPECT_DONE(people->MoveFirst());
    EXPECT_DONE(Change(*people, "Age", 41));
    EXPECT_EQ(TextOf(people->Get("Age")), "41");
    EXPECT_DONE(Change(*people, "Name", std::string(65535, 'x')));
    EXPECT_FAILS(Change(*people, "Name", std::string(65536, 'x')), dao_error::FieldTooSmall);
}

TEST_F(RecordsetTest, RowChangedByAStatementIsReadAgain) {
    MakePeople({"Ann"});
    const auto people = Open("People");
    EXPECT_EQ(TextOf(people->Get("Age")), "1");
    EXPECT_EQ(Execute("UPDATE People SET Age = 5"), 1);
    EXPECT_EQ(TextOf(people->Get("Age")), "5");
    EXPECT_EQ(Execute("DELETE * FROM People"), 1);
    EXPECT_EQ(TextOf(people->Get("Age")), "error 3167");
    EXPECT_FAILS(people->Edit(), dao_error::RecordDeleted);
    EXPECT_FAILS(people->Delete(), dao_error::RecordDeleted);
    EXPECT_EQ(people->RecordCount(), 0);
}

TEST_F(RecordsetTest, DefaultsNumbersAndDatesAreStoredAsTheyShould) {
    Field count = Column("Count", FieldType::Integer);
    count.defaultValue = "0";
    Field word = Column("Word");
    word.defaultValue = "\"it's\"";
    Field needed = Column("Needed");
    needed.required = true;
    MakeTable("T", {AutoNumber(), count, word, needed, Column("When", FieldType::Date),
                    Column("Flag", FieldType::Boolean)});
    const auto rows = Open("T");
    EXPECT_DONE(rows->AddNew());
    EXPECT_EQ(TextOf(rows->Get("Count")), "0");
    EXPECT_EQ(TextOf(rows->Get("Word")), "it's");
    EXPECT_FAILS(rows->Update(), dao_error::RequiredField);
    EXPECT_DONE(rows->Set("Needed", "here"));
    EXPECT_DONE(rows->Set("When", "3/9/2001 1:00:00 PM"));
    EXPECT_DONE(rows->Set("Flag", -1));
    EXPECT_DONE(rows->Update());
    EXPECT_EQ(After(*rows, "f"), "1");
    EXPECT_EQ(TextOf(rows->Get("Word")), "it's");
    EXPECT_EQ(TextOf(rows->Get("Flag")), "True");
    EXPECT_EQ(rows->Get("When")->DateOr({}), *DateTime::FromParts(2001, 3, 9, 13));
    EXPECT_EQ(Walk("SELECT Count(*) FROM T WHERE [When] > #3/9/2001 12:30:00 PM#"), "1");
    EXPECT_DONE(Change(*rows, "ID", 1));
    EXPECT_FAILS(Change(*rows, "ID", 2), dao_error::FieldNotUpdatable);
}

TEST_F(RecordsetTest, DeletedRowLeavesItsPlaceUntilTheMove) {
    MakePeople({"a", "b", "c", "d"});
    const auto people = Open("People");
    EXPECT_DONE(people->MoveNext());
    const Bookmark removed = *people->GetBookmark();
    EXPECT_EQ(After(*people, "d"), "error 3167");
    EXPECT_EQ(people->RecordCount(), 3);
    EXPECT_FAILS(people->SetBookmark(removed), dao_error::NoCurrentRecord);
    EXPECT_EQ(After(*people, "n"), "c");
    EXPECT_EQ(*people->PositionOf(*people->GetBookmark()), 1u);
    EXPECT_EQ(After(*people, "p"), "a");
    EXPECT_EQ(After(*people, "dldn"), "error 3021");
    EXPECT_TRUE(people->EndOfFile());
    EXPECT_EQ(Walk(*people), "c");
}

TEST_F(RecordsetTest, PagesFollowThePositionsThatAreLeft) {
    MakePeople({"a", "b", "c", "d", "e"});
    const auto people = Open("SELECT Age, Name FROM People ORDER BY Name DESC");
    After(*people, "nd");  // "d"
    EXPECT_EQ(Execute("DELETE FROM People WHERE Name = 'b'"), 1);
    const auto page = people->ReadRows(1, 10);
    ASSERT_TRUE(page.Ok());
    ASSERT_EQ(page->size(), 3u);
    EXPECT_EQ((*page)[0][1].TextOrEmpty(), "c");
    EXPECT_TRUE((*page)[1][1].IsNull());
    EXPECT_EQ((*page)[2][0].TextOrEmpty(), "1");
    EXPECT_EQ(*people->PositionOf(*people->BookmarkAt(2)), 2u);
    EXPECT_EQ(people->BookmarkAt(4).Error().number, dao_error::NoCurrentRecord);
    EXPECT_TRUE(people->ReadRows(9, 1)->empty());
}

std::string FindAll(Recordset& recordset, const std::string& condition, bool change) {
    std::string found;
    DaoError outcome = recordset.FindFirst(condition);
    while (outcome.Ok() && !recordset.NoMatch()) {
        found += recordset.Get("Name")->TextOrEmpty();
        if (change) {
            EXPECT_DONE(Change(recordset, "Age", 0));
        }
        outcome = recordset.FindNext(condition);
    }
    return outcome.Ok() ? found : "error " + std::to_string(outcome.number);
}

TEST_F(RecordsetTest, SearchFollowsTheRecordsetsOrder) {
    MakePeople({"a1", "b", "a2", "c", "A3"});
    const std::pair<const char*, const char*> rows[] = {
        {"People", "a1a2A3"},
        {"SELECT * FROM People ORDER BY Name DESC", "A3a2a1"},
        {"SELECT TOP 3 * FROM People", "a1a2"},
    };
    for (const bool change : {false, true})
        for (const auto& [source, found] : rows)
            EXPECT_EQ(FindAll(*Open(source), "[Name] LIKE 'a*'", change), found) << source;
    EXPECT_EQ(FindAll(*Open("SELECT DISTINCT Name FROM People"), "[Name] = 'A1'", false), "a1");
}

TEST_F(RecordsetTest, NoMatchLeavesThePosition) {
    MakePeople({"a", "b", "c"});
    const auto people = Open("People");
    EXPECT_DONE(people->MoveNext());
    EXPECT_DONE(people->FindFirst("Age = 7"));
    EXPECT_TRUE(people->NoMatch());
    EXPECT_EQ(TextOf(people->Get(0)), "b");
    EXPECT_TRUE(people->FindFirst("Age = = 7").Failed());
    EXPECT_EQ(TextOf(people->Get(0)), "b");
    EXPECT_DONE(people->FindFirst("age = 1"));
    EXPECT_EQ(TextOf(people->Get(0)), "a");
    EXPECT_EQ(Execute("UPDATE People SET Age = 1 WHERE Name = 'c'"), 1);
    EXPECT_DONE(people->FindNext("age = 1"));
    EXPECT_EQ(TextOf(people->Get(0)), "c") << "a row that came to match during the search";
}

TEST_F(RecordsetTest, FilterTakesEffectInTheRecordsetThatItOpens) {
    MakePeople({"a", "b", "c", "d"});
    for (const char* source : {"SELECT TOP 3 * FROM People", "SELECT DISTINCT * FROM People"}) {
        SCOPED_TRACE(source);
        const auto people = Open(source);
        people->SetFilter("[Age] BETWEEN 2 AND 9");
        EXPECT_EQ(Walk(*people).substr(0, 3), "a b");
        const auto filtered = *people->OpenFiltered();
        EXPECT_EQ(Walk(*filtered).substr(0, 3), "b c");
        EXPECT_EQ(filtered->RecordCount(), people->RecordCount() - 1);
        EXPECT_DONE(filtered->FindFirst("Name = 'c'"));
        EXPECT_EQ(TextOf(filtered->Get(0)), "c");
        filtered->SetFilter("Name = 'c' OR Name = 'a'");
        EXPECT_EQ(Walk(**filtered->OpenFiltered()), "c");
        people->SetFilter("nothing = 1");
        EXPECT_TRUE(people->OpenFiltered().Failed());
    }
}

TEST_F(RecordsetTest, QueriesOverSeveralTablesAreReadOnly) {
    MakePeople({"Ann", "Bob"});
    const auto joined =
        Open("SELECT a.Name, b.Age FROM People AS a INNER JOIN People AS b ON a.Name = b.Name");
    EXPECT_EQ(joined->Fields()[1].type, FieldType::Long);
    EXPECT_DONE(joined->MoveNext());
    EXPECT_EQ(TextOf(joined->Get("Age")), "2");
    EXPECT_FAILS(joined->Edit(), dao_error::ReadOnly);
    EXPECT_FAILS(joined->Delete(), dao_error::ReadOnly);
}

TEST_F(RecordsetTest, ClosedObjectsAnswerSo) {
    MakePeople({"Ann"});
    const auto first = Open("People");
    const auto second = Open("People");
    first->Close();
    EXPECT_FALSE(first->IsOpen());
    EXPECT_EQ(TextOf(first->Get(0)), "error 3420");
    workspace_->Close();
    EXPECT_FALSE(database_->IsOpen());
    for (Recordset* rows : {first.get(), second.get()}) {
        EXPECT_EQ(TextOf(rows->Get(0)), "error 3420");
        EXPECT_EQ(After(*rows, "n"), "failed 3420");
        EXPECT_FAILS(rows->AddNew(), dao_error::ObjectInvalid);
        EXPECT_FAILS(rows->Requery(), dao_error::ObjectInvalid);
    }
    EXPECT_EQ(database_->Execute("DELETE * FROM People").Error().number, dao_error::ObjectInvalid);
    EXPECT_FAILS(database_->DeleteTable("People"), dao_error::ObjectInvalid);
    EXPECT_FAILS(database_->Transaction([] { return DaoError(); }), dao_error::ObjectInvalid);
}

}  // namespace
}  // namespace mailvane
