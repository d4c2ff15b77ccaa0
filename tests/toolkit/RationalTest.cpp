#include "toolkit/services/Rational.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <utility>

namespace {

using Fraction = std::pair<unsigned long, unsigned long>;

Fraction fractionOf(double number) {
    Fraction fraction{7, 7};
    Ox::Rational::toRational(fraction.first, fraction.second, number);
    return fraction;
}

TEST(Rational, WholeNumbersAreThemselves) {
    EXPECT_EQ(fractionOf(25.0), Fraction(25, 1));
    EXPECT_EQ(fractionOf(1.0), Fraction(1, 1));
    EXPECT_EQ(fractionOf(90000.0), Fraction(90000, 1));
}

TEST(Rational, RatesOfTelevisionAreExact) {
    for (unsigned long nominal : {24UL, 30UL, 48UL, 60UL, 120UL}) {
        EXPECT_EQ(fractionOf(static_cast<double>(nominal) * 1000.0 / 1001.0), Fraction(nominal * 1000, 1001));
    }
}

TEST(Rational, RatesOfTelevisionAreKnownAsTheyAreWritten) {
    EXPECT_EQ(fractionOf(29.97), Fraction(30000, 1001));
    EXPECT_EQ(fractionOf(23.976), Fraction(24000, 1001));
    EXPECT_EQ(fractionOf(59.94), Fraction(60000, 1001));
}

TEST(Rational, OtherNumbersComeAsTheSimplestFraction) {
    EXPECT_EQ(fractionOf(12.5), Fraction(25, 2));
    EXPECT_EQ(fractionOf(0.1), Fraction(1, 10));
    EXPECT_EQ(fractionOf(26.666666666666668), Fraction(80, 3));
}

TEST(Rational, AnIrrationalNumberIsNear) {
    Fraction const pi = fractionOf(3.141592653589793);
    EXPECT_NEAR(static_cast<double>(pi.first) / static_cast<double>(pi.second), 3.141592653589793, 1e-11);
    EXPECT_LE(pi.second, 1'000'000U);
}

TEST(Rational, WhatIsNoRateIsZero) {
    for (double number : {0.0, -25.0, std::nan(""), std::numeric_limits<double>::infinity(), 1e300}) {
        EXPECT_EQ(fractionOf(number), Fraction(0, 1)) << number;
    }
}

}  // namespace
