#include <benchmark/benchmark.h>

#include "toolkit/services/Log.h"

namespace {

/// What the library says while it is measured is of no use to the table.
class Silence : public iLogSink {
public:
    void writeToConsole(LightweightString<char> const&) override {}
    void writeToLog(LightweightString<char> const&) override {}
};

}  // namespace

int main(int argc, char** argv) {
    Silence silence;
    installLogSink(&silence);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    installLogSink(nullptr);
    return 0;
}
