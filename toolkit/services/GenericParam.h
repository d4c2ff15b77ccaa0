#pragma once

#include "ole/Ox/OxObject.h"
#include "ole/Ox/OxString.h"

namespace GenericParam {

/// Describes one setting for people: what it is called and which values it takes.
class iParam : public virtual iObject {
public:
    /// The key under which its value stands in a `configb`.
    [[nodiscard]] virtual LightweightString<char> getKey() const = 0;
    /// What it does, in one sentence.
    [[nodiscard]] virtual LightweightString<char> getDescription() const = 0;
    /// The values it takes, for people ("0 to 16", "auto, bt709, bt601").
    [[nodiscard]] virtual LightweightString<char> getValues() const = 0;
};

}  // namespace GenericParam
