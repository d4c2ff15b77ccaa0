#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>

#include "ole/os/Shutdown.h"
#include "tests/fakes/Gate.h"

namespace {

Shutdown::CallbackPtr callbackOf(std::function<void()> function) {
    using Callback = Ox::FunctionCallback<void, Shutdown::eExitType>;
    return Ox::makePtr<Callback>(
        [function = std::move(function)](Shutdown::eExitType const&) { function(); });
}

TEST(ShutdownRemoval, WaitsForACallOnAnotherThread) {
    Gate gate{false};
    std::atomic<bool> hasEnded{false};
    auto const callback = callbackOf([&] {
        gate.pass();
        for (int i = 0; i < 1000; ++i) {
            std::this_thread::yield();
        }
        hasEnded = true;
    });
    Shutdown::addCallback(callback, 1);
    std::jthread const running([] { Shutdown::run(Shutdown::normalExit); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    gate.open();
    Shutdown::removeCallback(callback);
    EXPECT_TRUE(hasEnded);
}

TEST(ShutdownRemoval, InsideTheCallDoesNotWait) {
    int calls = 0;
    Shutdown::CallbackPtr callback;
    callback = callbackOf([&] {
        ++calls;
        Shutdown::removeCallback(callback);
    });
    Shutdown::addCallback(callback, 1);
    Shutdown::run(Shutdown::normalExit);
    EXPECT_EQ(calls, 1);
}

TEST(ShutdownRemoval, WaitsForNoOtherCallback) {
    Gate gate{false};
    Shutdown::addCallback(callbackOf([&] { gate.pass(); }), 1);
    auto const other = callbackOf([] { FAIL() << "it was removed"; });
    Shutdown::addCallback(other, 2);
    std::jthread const running([] { Shutdown::run(Shutdown::normalExit); });
    ASSERT_TRUE(gate.waitForArrivals(1));
    Shutdown::removeCallback(other);
    gate.open();
}

}  // namespace
