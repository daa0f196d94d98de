#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>

#include "platform/dao/DaoTestBase.h"

namespace mailvane {
namespace {

class FileTest : public DaoTest {
protected:
    int OpenNumber(const std::string& path, OpenMode mode = OpenMode::Shared) {
        return workspace_->OpenDatabase(path, mode).Error().number;
    }

    /// Carries the work out in a process of its own, and gives its exit status.
    template <class Work>
    static int InChild(const Work& work) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(work());
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    bool RefusedInChild(OpenMode mode) {
        return InChild([&] { return OpenNumber(path_, mode) == dao_error::OpenedExclusively; }) ==
               1;
    }

    bool LockFileExists() const { return std::filesystem::exists(path_ + ".lock"); }
};

TEST_F(FileTest, OnlyDatabasesOpen) {
    database_->Close();
    const std::string access =
        std::string("\0\1\0\0", 4) + "Standard ACE DB" + std::string(4096, 1);
    for (const std::string& path :
         {folder_.Path(), folder_.Write("empty.db", ""), folder_.Write("short.db", "x"),
          folder_.Write("text.db", std::string(5000, 'x')), folder_.Write("access.mdb", access)})
        EXPECT_EQ(OpenNumber(path), dao_error::UnrecognizedFormat) << path;
    EXPECT_EQ(OpenNumber(folder_.File("missing.db")), dao_error::FileNotFound);
    const std::string header = "SQLite format 3" + std::string(2000, '\0');
    EXPECT_EQ(OpenNumber(folder_.Write("header.db", header)), dao_error::DamagedFile);
    EXPECT_EQ(folder_.Read("access.mdb"), access);
    const auto told = workspace_->OpenDatabase(folder_.File("access.mdb")).Error().description;
    EXPECT_NE(told.find("Microsoft Access"), std::string::npos);
    EXPECT_FALSE(std::filesystem::exists(folder_.File("missing.db")));
    EXPECT_FALSE(std::filesystem::exists(folder_.File("text.db.lock")));
}

TEST_F(FileTest, NewDatabaseTakesNoFilesPlace) {
    const auto create = [this](const std::string& path) {
        return workspace_->CreateDatabase(path).Error().number;
    };
    EXPECT_EQ(create(path_), dao_error::DatabaseExists);
    EXPECT_EQ(create(folder_.Write("other", "x")), dao_error::DatabaseExists);
    EXPECT_EQ(folder_.Read("other"), "x");
    EXPECT_EQ(create(folder_.File("no/such/folder.db")), dao_error::CannotOpenFile);
    database_->Close();
    Reopen(path_);  // a database without tables is one
}

TEST_F(FileTest, ExclusiveOpeningStandsAlone) {
    const std::string link = folder_.File("link.db");
    std::filesystem::create_symlink(path_, link);
    EXPECT_EQ(OpenNumber(path_), 0);
    EXPECT_EQ(OpenNumber(link, OpenMode::Exclusive), dao_error::OpenedExclusively);
    EXPECT_TRUE(RefusedInChild(OpenMode::Exclusive));
    database_->Close();
    EXPECT_FALSE(LockFileExists());
    {
        const auto alone = workspace_->OpenDatabase(path_, OpenMode::Exclusive);
        ASSERT_TRUE(alone.Ok());
        EXPECT_EQ(OpenNumber(path_), dao_error::OpenedExclusively);
        EXPECT_EQ(OpenNumber(link), dao_error::OpenedExclusively);
        EXPECT_TRUE(RefusedInChild(OpenMode::Shared));
        EXPECT_FAILS(DBEngine::RepairDatabase(path_).Error(), dao_error::OpenedExclusively);
    }
    EXPECT_EQ(OpenNumber(path_), 0);
    EXPECT_FALSE(LockFileExists());
}

TEST_F(FileTest, LockLeftByADeadProcessHoldsNobodyUp) {
    database_->Close();
    EXPECT_EQ(InChild([&]() -> int {
                  const auto held = workspace_->OpenDatabase(path_, OpenMode::Exclusive);
                  ::kill(::getpid(), SIGKILL);
                  return 0;
              }),
              -1);
    EXPECT_TRUE(LockFileExists());
    EXPECT_EQ(OpenNumber(path_, OpenMode::Exclusive), 0);
    EXPECT_FALSE(LockFileExists());
}

TEST_F(FileTest, KilledTransactionLeavesWholeUnits) {
    MakePeople({"Ann"});
    database_->Close();
    EXPECT_EQ(
        InChild([&]() -> int {
            const auto database = workspace_->OpenDatabase(path_).ValueOr(nullptr);
            if (database == nullptr) return 1;
            database->Execute("INSERT INTO People (Name) VALUES ('committed')").Ok();
            return database
                ->Transaction([&]() -> DaoError {
                    database->Execute("DELETE * FROM People").Ok();
                    for (int i = 0; i < 5000; ++i)
                        database->Execute("INSERT INTO People (Name) VALUES ('half done')").Ok();
                    ::kill(::getpid(), SIGKILL);
                    return {};
                })
                .number;
        }),
        -1);
    Reopen(path_);
    EXPECT_EQ(Walk("People"), "Ann committed");
}

TEST_F(FileTest, CompactInPlaceLeavesACopyBeside) {
    MakePeople({"Ann", std::string(60'000, 'x')});
    Execute("DELETE FROM People WHERE Name <> 'Ann'");
    const std::string backup = folder_.Write("test.db.bak", "an older one");
    EXPECT_DONE(database_->AppendIndex("People", {"Index1", {"Name"}, true, false}));
    EXPECT_FAILS(DBEngine::CompactInPlace(path_, backup).Error(), dao_error::OpenedExclusively);
    database_->Close();
    std::filesystem::permissions(path_, std::filesystem::perms(0600));
    EXPECT_DONE(DBEngine::CompactInPlace(path_, backup).Error());
    EXPECT_LT(std::filesystem::file_size(path_), 50'000u);
    for (const std::string& file : {path_, backup})
        EXPECT_EQ(std::filesystem::status(file).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.Path()), {}), 2);
    Reopen(path_);
    EXPECT_TRUE(std::filesystem::exists(path_ + "-wal"));  // still logs ahead
    EXPECT_TRUE(database_->GetTableDef("People")->indexes.at(0).primary);
    Execute("DELETE FROM People");
    database_->Close();
    path_ = backup;
    Reopen(path_);
    EXPECT_EQ(Walk("People"), "Ann");
}

TEST_F(FileTest, LeftoversGoUnlessAnybodyIsAtWork) {
    const std::string half = folder_.Write("test.db.mailvane-new", "half");
    database_->Close();
    {
        const auto working = workspace_->OpenDatabase(path_, OpenMode::Exclusive);
        ASSERT_TRUE(working.Ok());
        DBEngine::RemoveLeftovers(path_, path_ + ".bak");
        EXPECT_TRUE(std::filesystem::exists(half));
    }
    DBEngine::RemoveLeftovers(path_, path_ + ".bak");
    EXPECT_FALSE(std::filesystem::exists(half));
}

TEST_F(FileTest, DamageMetWhileReadingIsTold) {
    MakePeople({"Ann"});
    database_->Close();
    folder_.Write("test.db", folder_.Read("test.db").replace(4096, 4096, 4096, '\x5a'));
    Reopen(path_);
    EXPECT_EQ(database_->OpenRecordset("People").Error().number, dao_error::DamagedFile);
}

}  // namespace
}  // namespace mailvane
