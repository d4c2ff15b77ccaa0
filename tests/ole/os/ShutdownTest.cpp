#include "ole/os/Shutdown.h"

#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/Threads.h"

namespace test {
namespace {

using Callback = Shutdown::CallbackPtr;

class ShutdownTest : public ::testing::Test {
protected:
    /// A callback that writes its name down and then does `more`.
    Callback callback(std::string const& name, std::function<void()> more = {}) {
        return Ox::makePtr<Ox::FunctionCallback<void, Shutdown::eExitType>>(
            [this, name, more = std::move(more)](Shutdown::eExitType const&) {
                ran_.push_back(name);
                if (more) {
                    more();
                }
            });
    }
    void add(std::string const& name, std::uint32_t order) { Shutdown::addCallback(callback(name), order); }
    std::vector<std::string> run() {
        Shutdown::run(Shutdown::normalExit);
        return ran_;
    }

    std::vector<std::string> ran_;
};

using Names = std::vector<std::string>;

TEST_F(ShutdownTest, RunsInAscendingOrder) {
    add("pools", Shutdown::poolOrder);
    add("first", 1);
    add("queues", Shutdown::queueOrder);
    EXPECT_EQ((Names{"first", "queues", "pools"}), run());
}

TEST_F(ShutdownTest, RunsThoseOfOneOrderAsTheyWereAdded) {
    add("a", 5);
    add("b", 5);
    add("c", 5);
    EXPECT_EQ((Names{"a", "b", "c"}), run());
}

TEST_F(ShutdownTest, RunsEachCallbackOnce) {
    add("a", 1);
    run();
    EXPECT_EQ((Names{"a"}), run());
}

TEST_F(ShutdownTest, ACallbackMayRemoveItself) {
    Callback self;
    self = callback("self", [&] { Shutdown::removeCallback(self); });
    Shutdown::addCallback(self, 1);
    add("next", 2);
    EXPECT_EQ((Names{"self", "next"}), run());
}

TEST_F(ShutdownTest, ACallbackThatWasRemovedMeanwhileIsNotRun) {
    Callback const later = callback("later");
    Shutdown::addCallback(callback("remover", [&] { Shutdown::removeCallback(later); }), 1);
    Shutdown::addCallback(later, 2);
    EXPECT_EQ((Names{"remover"}), run());
}

TEST_F(ShutdownTest, WhatIsAddedMeanwhileIsLeftForTheNextRun) {
    Shutdown::addCallback(callback("adder", [this] { add("added", 9); }), 1);
    EXPECT_EQ((Names{"adder"}), run());
    EXPECT_EQ((Names{"adder", "added"}), run());
}

TEST_F(ShutdownTest, ACallbackThatRunsTheOthersIsNotRunAgain) {
    Shutdown::addCallback(callback("outer", [] { Shutdown::run(Shutdown::normalExit); }), 1);
    add("inner", 2);
    EXPECT_EQ((Names{"outer", "inner"}), run());
}

TEST_F(ShutdownTest, RemovingWhatIsNotThereDoesNothing) {
    Shutdown::removeCallback(callback("stranger"));
    EXPECT_EQ(Names{}, run());
}

TEST_F(ShutdownTest, HoldsACallbackUntilItHasRun) {
    Callback const held = callback("held");
    std::uint32_t const before = held.useCount();
    Shutdown::addCallback(held, 1);
    EXPECT_EQ(before + 1, held.useCount());
    run();
    EXPECT_EQ(before, held.useCount());
}

TEST_F(ShutdownTest, ACallbackMayLoseItsLastHolderWhileItRuns) {
    struct Owner {
        Callback callback;
    };
    auto owner = std::make_unique<Owner>();
    owner->callback = callback("owned", [&] { owner = nullptr; });
    Shutdown::addCallback(owner->callback, 1);
    EXPECT_EQ((Names{"owned"}), run());
    EXPECT_EQ(nullptr, owner);
}

TEST_F(ShutdownTest, NobodyWaitsForACallbackThatHasThrown) {
    Callback const failing = callback("failing", [] { throw std::runtime_error("disk full"); });
    Shutdown::addCallback(failing, 1);
    EXPECT_THROW(run(), std::runtime_error);
    Threads const removing(1, [&] { Shutdown::removeCallback(failing); });
    EXPECT_EQ((Names{"failing"}), ran_);
}

TEST_F(ShutdownTest, CallsAnOverriddenMember) {
    struct Base {
        virtual ~Base() = default;
        virtual void shutdown(Shutdown::eExitType) = 0;
    };
    struct Derived : Base {
        void shutdown(Shutdown::eExitType exitType) override { told = exitType; }
        Shutdown::eExitType told = Shutdown::normalExit;
    };
    Derived object;
    Shutdown::addCallback(Ox::makePtr<Shutdown::MethodCallback<Base>>(&object, &Base::shutdown), 1);
    Shutdown::run(Shutdown::emergencyExit);
    EXPECT_EQ(Shutdown::emergencyExit, object.told);
}

TEST_F(ShutdownTest, ManyThreadsThatRunItRunEachCallbackOnce) {
    std::atomic<int> runs{0};
    for (int index = 0; index < 100; ++index) {
        Shutdown::addCallback(Ox::makePtr<Ox::FunctionCallback<void, Shutdown::eExitType>>(
                                  [&](Shutdown::eExitType const&) { ++runs; }),
                              1);
    }
    {
        Threads const threads(4, [] { Shutdown::run(Shutdown::normalExit); });
    }
    EXPECT_EQ(100, runs);
}

/// Ends a process of its own in which `arrange` has run; it prints what happens at its end.
void exitAfter(std::function<void()> const& arrange) {
    arrange();
    std::exit(0);
}

struct Speaker {
    explicit Speaker(char const* text) : last(text) {}
    ~Speaker() { std::fprintf(stderr, "%s ", last); }
    char const* last;
};

Callback speakingCallback() {
    return Ox::makePtr<Ox::FunctionCallback<void, Shutdown::eExitType>>(
        [](Shutdown::eExitType const&) { std::fprintf(stderr, "callback "); });
}

TEST(ShutdownAtExitDeathTest, RunsBeforeObjectsThatWereThereWhenACallbackWasAdded) {
    EXPECT_EXIT(exitAfter([] {
                    static Speaker const object("object");
                    Shutdown::addCallback(speakingCallback(), 1);
                }),
                ::testing::ExitedWithCode(0), "callback object");
}

TEST(ShutdownAtExitDeathTest, RunsAfterObjectsThatWereMadeLater) {
    EXPECT_EXIT(exitAfter([] {
                    Shutdown::addCallback(speakingCallback(), 1);
                    static Speaker const object("object");
                }),
                ::testing::ExitedWithCode(0), "object callback");
}

TEST(ShutdownAtExitDeathTest, CanBeMadeToRunBeforeThoseToo) {
    EXPECT_EXIT(exitAfter([] {
                    Shutdown::addCallback(speakingCallback(), 1);
                    static Speaker const object("object");
                    Shutdown::runBeforeEarlierStatics();
                }),
                ::testing::ExitedWithCode(0), "callback object");
}

}  // namespace
}  // namespace test
