#pragma once

#include <termios.h>

namespace cli {

/// While it lives, long work asks it whether to stop: when somebody has pressed escape on the terminal, or wants the
/// program to end.
///
/// Ownership  There is one at a time. The terminal shows no keys meanwhile, and is as it was afterwards.
class EscapeKey {
public:
    EscapeKey();
    ~EscapeKey();
    EscapeKey(EscapeKey const&) = delete;
    EscapeKey& operator=(EscapeKey const&) = delete;

private:
    bool isChanged_ = false;
    termios before_{};
};

}  // namespace cli
