/// Processes killed at every call of the file manager in every kind of transfer, and in the middle of every copy.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/TransferWorld.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

/// Far more calls than any of the transfers makes.
constexpr int mostCalls = 2000;
/// Under a sanitizer only some of them, as each takes a process of its own.
#if defined(PLAYFILE_SANITIZED)
constexpr int step = 6;
#else
constexpr int step = 1;
#endif

class KilledTransfer : public testing::TestWithParam<std::string> {
protected:
    static bool isMove() { return GetParam().rfind("relocate-move", 0) == 0; }

    /// True once the transfer made fewer calls than that.
    bool killAt(int number, std::string const& when) {
        TemporaryFolder const folder;
        TransferWorld(folder.file(""), GetParam()).prepare();
        ChildProcess runner("transfer_runner", {folder.file(""), GetParam(), std::to_string(number), when});
        bool const isOver = runner.waitForEnd().exitCode == 0;
        TransferWorld world(folder.file(""), GetParam());
        std::string const where = when + " call " + std::to_string(number);
        EXPECT_TRUE(world.isProjectWhole()) << where;
        EXPECT_EQ(world.faultOfDisk() + world.faultOfSources(), "") << where;
        // Deliberate: a move deletes the source before it corrects the catalogue.
        if (!isMove()) {
            EXPECT_EQ(world.faultOfCatalogue(), "") << where;
        }
        checkSecondRun(world, where);
        return isOver;
    }
    /// Deliberate: a relocation passes over what is at its target, half files too.
    void checkSecondRun(TransferWorld& world, std::string const& where) const {
        world.run();
        EXPECT_EQ(world.faultOfDisk() + world.faultOfSources(), "") << "a second run after " << where;
        if (GetParam().rfind("relocate", 0) != 0) {
            TransferWorld::End const end = world.end();
            EXPECT_TRUE(end == once_ || end == twice_) << "a second run after " << where;
        }
    }
    void killAtEach(std::string const& when) {
        int number = 1;
        while (!killAt(number, when) && number < mostCalls) {
            number += step;
        }
        EXPECT_GT(number, 3);
        EXPECT_LT(number, mostCalls);
    }

    LogRecorder log_;
    TransferWorld::End const once_ = TransferWorld::undisturbed(GetParam(), 1);
    TransferWorld::End const twice_ = TransferWorld::undisturbed(GetParam(), 2);
};

TEST_P(KilledTransfer, BeforeEachCallLosesNothing) {
    killAtEach("before");
}

TEST_P(KilledTransfer, InTheMiddleOfEachCopyLosesNothing) {
    killAtEach("half");
}

INSTANTIATE_TEST_SUITE_P(Transfers, KilledTransfer, testing::ValuesIn(TransferWorld::scenarios()),
                         [](auto const& tested) {
                             std::string name = tested.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace test
