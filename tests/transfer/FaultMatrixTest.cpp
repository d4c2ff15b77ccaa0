/// A fault at every call of the file manager, in every kind of transfer, once and from then on. The project is on disk.
///
/// A fault that makes a question come out wrong (is it there, how large is it) changes what the rules make of a
/// transfer: a series ends where a member can't be seen. Of faults in what is done to files the catalogue says nothing
/// that isn't so, and a second run puts them right, but for what the rules demand: a proxy whose copy failed is
/// forgotten, a rename that fails counts as done, and a relocation passes over what is at its target.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/TransferWorld.h"
#include "tests/support/TemporaryFolder.h"

namespace test {
namespace {

using eHowLong = FailingFileManager::eHowLong;

/// Far more calls than any of the transfers makes.
constexpr int mostCalls = 2000;

class FaultMatrix : public testing::TestWithParam<std::string> {
protected:
    static bool isRelocation() { return GetParam().rfind("relocate", 0) == 0; }
    /// Whether a second run puts right what a fault of this kind did.
    static bool isPutRight(std::string const& operation) {
        bool const isForgotten = GetParam() == "proxy" && operation == "copy";
        return !isRelocation() && !isForgotten &&
               (operation == "copy" || operation == "delete" || operation == "folder");
    }
    static bool isQuestion(std::string const& operation) {
        static std::set<std::string> const all = {"exists", "info", "size", "volume", "find", "open"};
        return all.count(operation) != 0;
    }

    /// True once there were no more calls that could have failed.
    bool tryFault(int number, eHowLong howLong) {
        TemporaryFolder const folder;
        TransferWorld world(folder.file(""), GetParam());
        world.prepare();
        world.files().failAt(number, howLong);
        world.run();
        std::string const failed = world.files().lastFailed();
        bool const isOver = world.files().getFailures() == 0;
        world.files().stopFailing();
        std::string const where = failed + " was call " + std::to_string(number);
        EXPECT_EQ(world.faultOfDisk() + world.faultOfSources(), "") << where;
        if (howLong == eHowLong::once) {
            checkTemporaryFiles(world, failed);
            if (!isQuestion(failed) && failed != "rename") {
                EXPECT_EQ(world.faultOfCatalogue(), "") << where;
            }
            if (isOver || isPutRight(failed)) {
                world.run();
                EXPECT_TRUE(world.end() == once_ || world.end() == twice_) << where;
            }
        }
        return isOver;
    }
    /// Deliberate: after a rename that failed the file is under its temporary name, and said to be here.
    static void checkTemporaryFiles(TransferWorld const& world, std::string const& failed) {
        for (auto const& [path, contents] : world.disk()) {
            EXPECT_TRUE(!path.ends_with(".partial") || failed == "rename" || failed == "delete")
                << path << " after " << failed;
        }
    }
    /// Lets every call fail in its turn.
    void tryAll(eHowLong howLong) {
        int number = 1;
        while (!tryFault(number, howLong) && number < mostCalls) {
            ++number;
        }
        EXPECT_GT(number, 3);
        EXPECT_LT(number, mostCalls);
    }

    LogRecorder log_;
    TransferWorld::End const once_ = TransferWorld::undisturbed(GetParam(), 1);
    TransferWorld::End const twice_ = TransferWorld::undisturbed(GetParam(), 2);
};

TEST_P(FaultMatrix, OneFaultAtEachCallLosesNothing) {
    tryAll(eHowLong::once);
}

TEST_P(FaultMatrix, FaultsFromEachCallOnLoseNothing) {
    tryAll(eHowLong::fromThenOn);
}

INSTANTIATE_TEST_SUITE_P(Transfers, FaultMatrix, testing::ValuesIn(TransferWorld::scenarios()),
                         [](auto const& tested) {
                             std::string name = tested.param;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace test
