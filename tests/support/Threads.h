#pragma once

#include <functional>
#include <thread>
#include <vector>

namespace test {

/// Threads that all run one function, joined at the end of the scope.
class Threads {
public:
    Threads(int count, std::function<void()> const& function) {
        for (int index = 0; index < count; ++index) {
            threads_.emplace_back(function);
        }
    }

private:
    std::vector<std::jthread> threads_;
};

}  // namespace test
