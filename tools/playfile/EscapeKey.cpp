#include "tools/playfile/EscapeKey.h"

#include <poll.h>
#include <unistd.h>

#include <atomic>

#include "toolkit/services/Watchdog.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/Interrupt.h"

namespace cli {
namespace {

constexpr char escape = 27;

std::atomic<bool> readsKeys{false};
std::atomic<bool> isPressed{false};

/// Takes what was typed, without waiting.
void readTyped() {
    pollfd input{STDIN_FILENO, POLLIN, 0};
    char key = 0;
    while (poll(&input, 1, 0) == 1 && read(STDIN_FILENO, &key, 1) == 1) {
        isPressed = isPressed || key == escape;
    }
}

bool isToStop() {
    try {
        checkForInterrupt();
    } catch (Stopped const&) {
        return true;
    }
    if (readsKeys) {
        readTyped();
    }
    return isPressed;
}

}  // namespace

EscapeKey::EscapeKey() {
    isPressed = false;
    termios now{};
    if (tcgetattr(STDIN_FILENO, &before_) == 0 && tcgetpgrp(STDIN_FILENO) == getpgrp()) {
        now = before_;
        now.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
        isChanged_ = tcsetattr(STDIN_FILENO, TCSANOW, &now) == 0;
    }
    readsKeys = isChanged_;
    installEscapeTest(&isToStop);
}

EscapeKey::~EscapeKey() {
    installEscapeTest(nullptr);
    readsKeys = false;
    if (isChanged_) {
        tcsetattr(STDIN_FILENO, TCSANOW, &before_);
    }
}

}  // namespace cli
