#include "host/sqlite/ProjectFile.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

#include "host/sqlite/SqliteCatalogue.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

using testing::AllOf;
using testing::HasSubstr;

class ProjectFileTest : public ::testing::Test {
protected:
    std::shared_ptr<ProjectFile> open(std::string const& name = "a.project") {
        error_.clear();
        return ProjectFile::open(folder_.name(name), error_);
    }
    /// Runs statements on the file, whatever they do to it.
    void tamper(char const* sql, std::string const& name = "a.project") {
        SqliteDatabase database(folder_.file(name));
        ASSERT_TRUE(database.run(sql)) << database.lastError();
    }
    static MediaFileInfo media(wchar_t const* path) { return {MaterialFilename(DriveId::none, path), 1}; }
    [[nodiscard]] static std::int64_t countOf(ProjectFile& file) {
        std::lock_guard const scope(file.lock);
        SqliteStatement count = file.prepare("SELECT count(*) FROM media");
        return count.step() == SQLITE_ROW ? count.number(0) : -1;
    }

    TemporaryFolder folder_;
    std::string error_;
    Cookie const cookie_{Ox::UUID::generate(), 'V', 0};
};

TEST_F(ProjectFileTest, OutlivesTheObject) {
    SqliteCatalogue(open()).addFile(cookie_, media(L"/m/a"));
    EXPECT_TRUE(SqliteCatalogue(open()).fileExists(cookie_));
}

TEST_F(ProjectFileTest, MakesItsFolder) {
    EXPECT_TRUE(open("b/c/a.project"));
    EXPECT_TRUE(folder_.holds("b/c/a.project"));
}

TEST_F(ProjectFileTest, ChangesAreSeenByOthersBeforeTheCallReturns) {
    SqliteCatalogue one(open());
    SqliteCatalogue other(open());
    one.addFile(cookie_, media(L"/m/a"));
    EXPECT_TRUE(other.fileExists(cookie_));
}

TEST_F(ProjectFileTest, TwoThatChangeItAtOnceLoseNothing) {
    constexpr int changes = 50;
    {
        Threads const threads(2, [&] {
            std::string error;
            SqliteCatalogue catalogue(ProjectFile::open(folder_.name("a.project"), error));
            for (int number = 0; number < changes; ++number) {
                catalogue.addFile(Cookie(Ox::UUID::generate(), 'V', 0), media(L"/m/a"));
            }
        });
    }
    EXPECT_EQ(countOf(*open()), 2 * changes);
}

TEST_F(ProjectFileTest, RefusesAFileOfALaterVersionAndLeavesIt) {
    ASSERT_TRUE(open());
    tamper("PRAGMA user_version = 999");
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, AllOf(HasSubstr("a.project"), HasSubstr("later version"), HasSubstr("update")));
    SqliteDatabase database(folder_.file("a.project"));
    SqliteStatement version = database.prepare("PRAGMA user_version");
    ASSERT_EQ(version.step(), SQLITE_ROW);
    EXPECT_EQ(version.number(0), 999);
}

TEST_F(ProjectFileTest, RefusesADatabaseOfAnotherKindAndLeavesIt) {
    tamper("CREATE TABLE notes (text TEXT)");
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, HasSubstr("another kind"));
    tamper("INSERT INTO notes VALUES ('still here')");
}

TEST_F(ProjectFileTest, RefusesAProjectWithoutAVersion) {
    ASSERT_TRUE(open());
    tamper("PRAGMA user_version = -1");
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, HasSubstr("another kind"));
}

TEST_F(ProjectFileTest, RefusesAFileThatIsNoDatabaseAndLeavesIt) {
    folder_.write("a.project", std::string(5000, 'x'));
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, AllOf(HasSubstr("a.project"), HasSubstr("not a database")));
    EXPECT_EQ(folder_.read("a.project"), std::string(5000, 'x'));
}

TEST_F(ProjectFileTest, RefusesAFolder) {
    std::filesystem::create_directory(folder_.file("a.project"));
    EXPECT_FALSE(open());
    EXPECT_THAT(error_, HasSubstr("a.project"));
}

TEST_F(ProjectFileTest, UndoesAndLogsAChangeThatFailsHalfWay) {
    LogRecorder log;
    auto const file = open();
    SqliteCatalogue catalogue(file);
    catalogue.addFile(cookie_, media(L"/m/a"));
    {
        std::lock_guard const scope(file->lock);
        EXPECT_FALSE(file->change("two things", [&] {
            return file->prepare("DELETE FROM media").step() == SQLITE_DONE &&
                   file->prepare("INSERT INTO media (clip) VALUES (1)").step() == SQLITE_DONE;
        }));
    }
    EXPECT_THAT(log.log().back(),
                AllOf(HasSubstr("two things"), HasSubstr("a.project"), HasSubstr("make room")));
    EXPECT_TRUE(catalogue.fileExists(cookie_));
}

TEST_F(ProjectFileTest, AQuestionAboutOneClipReadsNoOtherRows) {
    auto const file = open();
    SqliteCatalogue catalogue(file);
    for (int number = 0; number < 1000; ++number) {
        catalogue.addFile(Cookie(Ox::UUID::generate(), 'V', 0), media(L"/m/a"));
    }
    std::lock_guard const scope(file->lock);
    SqliteStatement plan = file->prepare(
        "EXPLAIN QUERY PLAN SELECT position FROM media WHERE clip = ?1 AND type = ?2 AND channel = ?3 "
        "ORDER BY position");
    ASSERT_EQ(plan.step(), SQLITE_ROW);
    EXPECT_EQ(plan.text(3), "SEARCH media USING PRIMARY KEY (clip=? AND type=? AND channel=?)");
    EXPECT_EQ(plan.step(), SQLITE_DONE);
}

}  // namespace
}  // namespace test
