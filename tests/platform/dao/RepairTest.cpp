// What a repair or compaction keeps of a damaged file, and that others lose nothing by it. The
// files are made with bare SQLite, as another program would.

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <random>
#include <set>

#include "platform/dao/DaoTestBase.h"
#include "platform/os/Files.h"

namespace mailvane {
namespace {

namespace fs = std::filesystem;
using Tokens = std::set<std::string>;

/// A file as another program has it open.
class Bare {
public:
    explicit Bare(const std::string& path) { sqlite3_open(path.c_str(), &database_); }
    ~Bare() { sqlite3_close(database_); }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;

    int Run(const std::string& sql) {
        return sqlite3_exec(database_, sql.c_str(), nullptr, nullptr, nullptr);
    }
    /// All values, one after another, as far as they can be read.
    std::vector<std::string> Values(const std::string& sql) {
        std::vector<std::string> values;
        sqlite3_stmt* query = nullptr;
        sqlite3_prepare_v2(database_, sql.c_str(), -1, &query, nullptr);
        while (sqlite3_step(query) == SQLITE_ROW)
            for (int i = 0; i < sqlite3_column_count(query); ++i) {
                const void* bytes = sqlite3_column_blob(query, i);
                const auto size = static_cast<std::size_t>(sqlite3_column_bytes(query, i));
                values.emplace_back(static_cast<const char*>(bytes), bytes == nullptr ? 0 : size);
            }
        sqlite3_finalize(query);
        return values;
    }
    std::string Value(const std::string& sql) {
        const auto values = Values(sql);
        return values.empty() ? "" : values.front();
    }

private:
    sqlite3* database_ = nullptr;
};

bool IsToken(const std::string& value) {
    return value.size() > 2 && value.front() == '<' && value.back() == '>';
}

/// The tokens of all rows of all tables.
Tokens TokensOf(const std::string& path) {
    Bare file(path);
    Tokens tokens;
    for (const std::string& table :
         file.Values("SELECT name FROM sqlite_schema WHERE type = 'table'"))
        for (const std::string& value : file.Values("SELECT * FROM \"" + table + "\""))
            if (IsToken(value)) tokens.insert(value);
    return tokens;
}

class RepairTest : public testing::Test {
protected:
    /// Rows with a token each, in a table with a key, one without, and one kept as an index.
    void MakeFile(const std::string& settings, int rows) {
        fs::remove(path_);
        Bare file(path_);
        file.Run("PRAGMA synchronous=OFF; " + settings +
                 "CREATE TABLE mail(ID INTEGER PRIMARY KEY AUTOINCREMENT, Token BLOB, Body TEXT);"
                 "CREATE TABLE list(Email TEXT COLLATE NOCASE, Token BLOB, Age INT DEFAULT 7);"
                 "CREATE TABLE words(Token BLOB, Word TEXT PRIMARY KEY) WITHOUT ROWID;"
                 "CREATE TABLE old(a); CREATE INDEX addresses ON list(Email, Token, Age);");
        const std::string numbers =
            "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i+1 FROM n "
            "WHERE i < " +
            std::to_string(rows) + ") ";
        const auto token = [](const char* letter) {
            return "CAST('<" + std::string(letter) + "' || i || '>' AS BLOB)";
        };
        file.Run(numbers + "INSERT INTO old SELECT zeroblob(900) FROM n;" + numbers +
                 "INSERT INTO mail SELECT i, " + token("m") +
                 ", substr(hex(zeroblob(1500)), 1, i * 37 % 3000) FROM n;" + numbers +
                 "INSERT INTO list SELECT 'ä' || i || '@example.com', " + token("l") +
                 ", i FROM n;" + numbers + "INSERT INTO words SELECT " + token("w") +
                 ", 'word ' || i FROM n; VACUUM; DROP TABLE old;");
    }

    std::string Read() { return *ReadWholeFile(path_); }

    /// Changes the file's bytes.
    void Damage(const std::function<void(std::string&)>& change) {
        std::string bytes = Read();
        change(bytes);
        ASSERT_TRUE(WriteWholeFile(path_, bytes));
    }
    std::size_t PlaceOfRoot(const std::string& table) {
        Bare file(path_);
        const int root = std::stoi(
            file.Value("SELECT rootpage FROM sqlite_schema WHERE name = '" + table + "'"));
        return static_cast<std::size_t>(root - 1) * PageSize();
    }
    std::size_t PageSize() {
        return static_cast<std::size_t>(std::stoi(Bare(path_).Value("PRAGMA page_size")));
    }

    /// Carries the work out in a process of its own.
    static pid_t InChild(const std::function<int()>& work) {
        const pid_t child = ::fork();
        if (child == 0) ::_exit(work());
        return child;
    }

    test::TempFolder folder_;
    std::string path_ = folder_.File("file.db");
};

TEST_F(RepairTest, RandomDamageCostsNoIntactRow) {
    constexpr unsigned Seed = 20261123;
    constexpr int Files = 200;
    SCOPED_TRACE("seed " + std::to_string(Seed));
    std::mt19937 random(Seed);
    const auto below = [&](std::size_t limit) { return random() % limit; };
    const std::string settings[] = {
        "PRAGMA page_size=512; PRAGMA journal_mode=DELETE;",
        "PRAGMA page_size=1024; PRAGMA encoding='UTF-16le'; PRAGMA journal_mode=WAL;",
        "PRAGMA page_size=4096; PRAGMA auto_vacuum=FULL; PRAGMA journal_mode=WAL;",
        "PRAGMA page_size=2048; PRAGMA encoding='UTF-16be';"};
    for (int number = 0; number < Files; ++number) {
        SCOPED_TRACE("file " + std::to_string(number));
        MakeFile(settings[number / 4 % 4], 60 + static_cast<int>(below(200)));
        const Tokens all = TokensOf(path_);
        const std::size_t page = PageSize();
        const std::vector<std::string> leaves = Bare(path_).Values(
            "SELECT pageno FROM dbstat WHERE pagetype = 'leaf' AND name IN ('mail', 'list', "
            "'words')");
        ASSERT_EQ(leaves.empty(), false);
        const char* tables[] = {"mail", "list", "words"};
        const std::size_t root = PlaceOfRoot(tables[below(3)]);
        const std::string before = Read();
        Damage([&](std::string& bytes) {
            if (number % 4 == 0)
                for (std::size_t flips = 1 + below(60); flips > 0; --flips)
                    bytes[below(bytes.size())] ^= static_cast<char>(1 << below(8));
            if (number % 4 == 1)
                for (std::size_t pages = 1 + below(4); pages > 0; --pages)
                    bytes.replace(below(bytes.size() / page) * page, page, page, '\0');
            if (number % 4 == 2) bytes.resize(page + below(bytes.size() - page));
            if (number % 4 == 3) bytes.replace(root, page, page, '\x5a');
        });
        const std::string after = Read();
        Tokens wanted = TokensOf(path_);
        for (const std::string& leaf : leaves) {
            const std::size_t place = static_cast<std::size_t>(std::stoi(leaf) - 1) * page;
            const std::string bytes = before.substr(place, page);
            if (place >= after.size() || after.substr(place, page) != bytes) continue;
            for (std::size_t at = bytes.find('<'); at != std::string::npos;
                 at = bytes.find('<', at + 1))
                wanted.insert(bytes.substr(at, bytes.find('>', at) + 1 - at));
        }
        const auto report = DBEngine::RepairDatabase(path_);
        const Tokens kept = TokensOf(path_);
        for (const std::string& token : wanted)
            if (all.contains(token) && !kept.contains(token))
                ADD_FAILURE() << token << " is lost: " << report.Error().description
                              << (report.Ok() ? report->Text() : "");
        for (const char* part : {".damaged", "-wal", "-shm"})
            fs::remove(path_ + part);
    }
}

TEST_F(RepairTest, EveryRowComesBackWhereTheDamageLeavesAWay) {
    const auto repair = [this](const std::string& lines) {
        const std::string damaged = Read();
        const auto report = DBEngine::RepairDatabase(path_);
        ASSERT_TRUE(report.Ok()) << report.Error().description;
        EXPECT_EQ(report->Text(),
                  lines + "\nThe damaged original was kept as '" + path_ + ".damaged'.");
        EXPECT_EQ(ReadWholeFile(path_ + ".damaged"), damaged);
        fs::remove(path_ + ".damaged");
        Bare file(path_);
        EXPECT_EQ(file.Value("PRAGMA integrity_check"), "ok");
        EXPECT_EQ(file.Value("SELECT group_concat(n) FROM (SELECT count(*) || ' ' || sum(ID) n "
                             "FROM mail UNION ALL SELECT count(*) || ' ' || sum(Age) FROM list)"),
                  "900 405450,900 405450");
        EXPECT_EQ(file.Value("SELECT seq FROM sqlite_sequence"), "900");
        EXPECT_EQ(file.Value("PRAGMA user_version"), "5");
        EXPECT_EQ(file.Value("PRAGMA journal_mode"), "delete");
    };
    const std::string all = "\nmail: 900 rows saved\nlist: 900 rows saved\nwords: ";
    for (const char* table : {"mail", "list", "words"}) {
        SCOPED_TRACE(table);
        MakeFile("PRAGMA user_version=5;", 900);
        const std::size_t root = PlaceOfRoot(table);
        Damage([&](std::string& bytes) { bytes.replace(root, 4096, 4096, '\x5a'); });
        // The root of a table that is kept as an index holds rows itself.
        repair(all + (std::string(table) == "words" ? "896" : "900") + " rows saved");
    }
    MakeFile("PRAGMA user_version=5;", 900);
    Damage([](std::string& bytes) {
        // The key in front of the record, and a page that an index with all columns can replace.
        const std::size_t key = bytes.find("<m801>");
        bytes[bytes.rfind(std::string("\x86\x21", 2), key)] ^= 1;
        const std::size_t row = bytes.find("<l450>");
        bytes.replace(row / 4096 * 4096, 4096, 4096, '\0');
    });
    repair(all + "900 rows saved");
}

TEST_F(RepairTest, OthersLoseNothingThatTheyCommit) {
    for (const std::string mode : {"DELETE", "WAL"}) {
        SCOPED_TRACE(mode);
        MakeFile("PRAGMA journal_mode=" + mode + ";", 50);
        const pid_t writer = InChild([this] {
            int written = 0;
            for (int i = 0; written < 100 && i < 100'000; ++i) {
                Bare file(path_);
                if (file.Run("INSERT INTO list DEFAULT VALUES") == SQLITE_OK) ++written;
            }
            return written;
        });
        int status = 0;
        int compacted = 0;
        while (::waitpid(writer, &status, WNOHANG) == 0)
            if (DBEngine::CompactInPlace(path_, path_ + ".bak").Ok()) ++compacted;
        EXPECT_GT(compacted, 0);
        EXPECT_EQ(Bare(path_).Value("SELECT count(*) FROM list"),
                  std::to_string(50 + WEXITSTATUS(status)));
    }
}

TEST_F(RepairTest, FilesThatAreNotItsOwnStayAsTheyAre) {
    MakeFile("PRAGMA journal_mode=WAL;", 50);
    const auto expect = [this](int number) {
        const std::string before = Read();
        EXPECT_FAILS(DBEngine::RepairDatabase(path_).Error(), number);
        EXPECT_FAILS(DBEngine::CompactInPlace(path_, path_ + ".bak").Error(), number);
        EXPECT_EQ(Read(), before);
        EXPECT_EQ(std::distance(fs::directory_iterator(folder_.Path()), {}), 1);
    };
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const pid_t reader = InChild([&]() -> int {
        Bare file(path_);
        file.Value("SELECT count(*) FROM mail");
        static_cast<void>(::write(ready[1], "x", 1));
        ::pause();
        return 0;
    });
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    EXPECT_FAILS(DBEngine::RepairDatabase(path_).Error(), dao_error::OpenedExclusively);
    ::kill(reader, SIGKILL);
    ::waitpid(reader, nullptr, 0);
    EXPECT_EQ(Bare(path_).Value("SELECT count(*) FROM mail"), "50");

    fs::permissions(path_, fs::perms::owner_read);
    expect(dao_error::ReadOnly);
    fs::permissions(path_, fs::perms::owner_write | fs::perms::owner_read);
    for (const std::string& content : {std::string(), std::string(9000, '\r')}) {
        ASSERT_TRUE(WriteWholeFile(path_, content));
        expect(dao_error::UnrecognizedFormat);
    }
}

TEST_F(RepairTest, TheTargetOfALinkIsReplaced) {
    MakeFile("", 300);
    const std::string target = folder_.File("target.db");
    fs::rename(path_, target);
    fs::create_symlink(target, path_);
    EXPECT_DONE(DBEngine::CompactInPlace(path_, path_ + ".bak").Error());
    Damage([](std::string& bytes) { bytes.replace(8192, 4096, 4096, '\x5a'); });
    EXPECT_TRUE(fs::is_regular_file(path_));
}

}  // namespace
}  // namespace mailvane
