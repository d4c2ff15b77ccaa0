#include "tools/playfile/Latencies.h"

#include <gtest/gtest.h>

namespace {

cli::Latencies from(std::initializer_list<double> values) {
    cli::Latencies latencies;
    for (double const value : values) {
        latencies.add(value);
    }
    return latencies;
}

TEST(Latencies, AreZeroWithoutAnything) {
    EXPECT_EQ(cli::Latencies().mean(), 0.0);
    EXPECT_EQ(cli::Latencies().percentile(50.0), 0.0);
}

TEST(Latencies, HaveAMean) {
    EXPECT_DOUBLE_EQ(from({1.0, 2.0, 6.0}).mean(), 3.0);
}

TEST(Latencies, PercentilesAreDurationsThatOccurred) {
    cli::Latencies const latencies = from({40.0, 10.0, 30.0, 20.0});
    EXPECT_DOUBLE_EQ(latencies.percentile(0.0), 10.0);
    EXPECT_DOUBLE_EQ(latencies.percentile(50.0), 20.0);
    EXPECT_DOUBLE_EQ(latencies.percentile(51.0), 30.0);
    EXPECT_DOUBLE_EQ(latencies.percentile(99.0), 40.0);
    EXPECT_DOUBLE_EQ(latencies.percentile(100.0), 40.0);
}

}  // namespace
