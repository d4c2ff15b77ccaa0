#include "ole/Ox/OxClassName.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace Ox {

LightweightString<char> classNameOf(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, decltype(&std::free)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return LightweightString<char>(name ? name.get() : type.name());
}

}  // namespace Ox
