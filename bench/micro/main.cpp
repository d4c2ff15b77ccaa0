#include <benchmark/benchmark.h>

#include "bench/support/Silence.h"

int main(int argc, char** argv) {
    bench::Silence const silence;
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
