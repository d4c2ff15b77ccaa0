#pragma once

#include <string>
#include <vector>

namespace test {

/// Arguments or settings in the form in which a program is started with them; `texts` keeps the letters.
inline std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace test
