#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "ole/Ox/OxVector.h"
#include "plugins/ffmpeg/AvPointers.h"
#include "toolkit/services/ConfigB.h"
#include "toolkit/services/GenericParam.h"

namespace playfile_ffmpeg {

/// The settings of one file's reader, as they stand in a `configb`: `colourMatrix` and `streamingStoreMiB`.
struct DecodeOptions {
    /// Of a picture that doesn't state its matrix; AVCOL_SPC_UNSPECIFIED to go by its height.
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    /// Memory for decoded pictures of a long-GOP file.
    std::uint32_t storeMiB = defaultStoreMiB();

    /// The setting `streamingStoreMiB`, read once.
    static std::uint32_t defaultStoreMiB();
    /// What the options are, for people.
    static LightweightVector<Ox::Ptr<GenericParam::iParam>> descriptions();

    configb values() const;
    /// Takes those that are there; a value that is none is logged and counts as the default.
    void take(configb const& values, LightweightString<wchar_t> const& file);
};

}  // namespace playfile_ffmpeg
