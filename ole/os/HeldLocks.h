#pragma once

/// Makes the check of the order of locks forget what this thread holds. A thread that ends the process from inside a
/// call never gives back what it holds there, and what ends with the process takes its locks all the same.
void forgetHeldLocks() noexcept;
