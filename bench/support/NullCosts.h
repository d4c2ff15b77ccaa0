#pragma once

#include <cstdint>

namespace bench {

/// What the library itself takes, measured with a reader that does nothing.
///
/// Units  Microseconds of one operation.
struct NullCosts {
    /// A file that is open, asked for by its name.
    double cachedOpenUs = 0.0;
    /// A request and its read, many under way at once.
    double requestUs = 0.0;
    /// The same with 1000 and with 10000 finished requests held.
    double requestWith1000HeldUs = 0.0;
    double requestWith10000HeldUs = 0.0;
};

/// Measures all of them: the best of a few runs each, as everything else on the machine only adds.
[[nodiscard]] NullCosts measureNullCosts();

}  // namespace bench
