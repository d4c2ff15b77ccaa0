#include "ole/Ox/OxMultipleAccessQueue.h"

namespace Ox {
namespace {

constexpr char const* sourcePath = "ole/Ox/OxMultipleAccessQueue";
constexpr int sourceLine = 136;

}  // namespace

void throwUncontrolledAccess() {
    throw Exception::RuntimeError("Uncontrolled object passed to endAccess", sourcePath, sourceLine,
                                  OS()->getDebug().takeStackTrace());
}

}  // namespace Ox
