#pragma once

namespace Ox {

/// Numbers as fractions.
class Rational {
public:
    /// The fraction that a number stands for. Whole numbers, and the rates of film and television that
    /// are a whole number times 1000/1001 (29.97 and 23.976 as they are mostly written included), come
    /// exactly; others as the simplest fraction that is as good as the number. A number that isn't
    /// positive and finite gives 0/1.
    static void toRational(unsigned long& numerator, unsigned long& denominator, double number);
};

}  // namespace Ox
