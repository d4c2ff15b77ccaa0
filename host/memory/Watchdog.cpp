#include "toolkit/services/Watchdog.h"

#include <atomic>

namespace {

constinit std::atomic<int> supports{0};
constinit std::atomic<EscapeTest> installedTest{nullptr};

}  // namespace

void SystemWatchdog::beginLifeSupport() {
    ++supports;
}

void SystemWatchdog::endLifeSupport() {
    --supports;
}

bool SystemWatchdog::isHeldOff() {
    return supports > 0;
}

bool g_esc_pressed() {
    EscapeTest const test = installedTest;
    return test != nullptr && test();
}

EscapeTest installEscapeTest(EscapeTest test) noexcept {
    return installedTest.exchange(test);
}
