#pragma once

#include "toolkit/services/Log.h"

namespace bench {

/// Keeps what the library says out of the tables while it is measured.
///
/// Ownership  In force as long as it lives.
class Silence : public iLogSink {
public:
    Silence() : before_(installLogSink(this)) {}
    ~Silence() override { installLogSink(before_); }
    Silence(Silence const&) = delete;
    Silence& operator=(Silence const&) = delete;

    void writeToConsole(LightweightString<char> const&) override {}
    void writeToLog(LightweightString<char> const&) override {}

private:
    iLogSink* before_;
};

}  // namespace bench
