#include "toolkit/services/Rational.h"

#include <cmath>

namespace Ox {
namespace {

/// Beyond this no rate makes sense, and the arithmetic would not fit.
constexpr double largest = 1e9;
constexpr double wholeTolerance = 1e-9;
/// Rates are written with two or three digits behind the point.
constexpr double televisionTolerance = 1e-4;
constexpr double televisionFactor = 1001.0 / 1000.0;
constexpr unsigned long televisionDenominator = 1001;
constexpr unsigned long televisionUnit = 1000;
constexpr double fractionTolerance = 1e-12;
constexpr unsigned long largestDenominator = 1'000'000;

/// Continued fractions: each step is the best fraction of its size.
void approximate(unsigned long& numerator, unsigned long& denominator, double number) {
    unsigned long before[2] = {1, 0};
    numerator = static_cast<unsigned long>(number);
    denominator = 1;
    double rest = number - std::floor(number);
    while (std::abs(static_cast<double>(numerator) / static_cast<double>(denominator) - number) >
           number * fractionTolerance) {
        double const inverse = 1.0 / rest;
        auto const whole = static_cast<unsigned long>(inverse);
        unsigned long const next[2] = {whole * numerator + before[0], whole * denominator + before[1]};
        if (next[1] > largestDenominator) {
            return;
        }
        before[0] = numerator;
        before[1] = denominator;
        numerator = next[0];
        denominator = next[1];
        rest = inverse - std::floor(inverse);
    }
}

}  // namespace

void Rational::toRational(unsigned long& numerator, unsigned long& denominator, double number) {
    numerator = 0;
    denominator = 1;
    if (!(number > 0.0) || number > largest) {
        return;
    }
    double const whole = std::round(number);
    if (std::abs(number - whole) < wholeTolerance) {
        numerator = static_cast<unsigned long>(whole);
        return;
    }
    double const nominal = std::round(number * televisionFactor);
    if (std::abs(number - nominal / televisionFactor) < televisionTolerance) {
        numerator = static_cast<unsigned long>(nominal) * televisionUnit;
        denominator = televisionDenominator;
        return;
    }
    approximate(numerator, denominator, number);
}

}  // namespace Ox
