/// New material of a clip: its name, its file, its place in the catalogue, its header.
#include "files/FileWriteInstance.h"
#include "files/PlayFileCache.h"
#include "files/PlayUtil.h"
#include "header/PlayPriv.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "toolkit/catalogue/SystemCache.h"
#include "toolkit/plugins/FileWriterInfo.h"
#include "toolkit/services/Log.h"
#include "toolkit/services/Paths.h"

namespace {

constexpr std::uint32_t bitsPerByte = 8;

/// The format decides the extension, and the first that it lists is the one.
LightweightString<wchar_t> pathFor(MaterialFilename const& material, Ox::FileWriterParams const& params) {
    LightweightString<wchar_t> const path = material.getOsPath();
    std::vector<LightweightString<wchar_t>> const extensions =
        Ox::FileWriterInfo::getExtensionsForFormat(params.format);
    return extensions.empty() ? path
                              : stripExtension(path) + LightweightString<wchar_t>(L".") + extensions.front();
}

/// False if the header can't be stored.
bool fileSound(Ox::Ptr<FileWriteInstance> const& file, Cookie const& cookie, MaterialFilename const& material,
               Ox::FileWriterParams const& params) {
    SystemCache::instance()->addFile(cookie, material, false);
    Aud::Metadata const stream =
        params.audioMetadata.empty() ? Aud::Metadata() : params.audioMetadata.front();
    SAV_HEADER header;
    PlayPriv::make_audio_header(file, &header, stream.sampleRate,
                                static_cast<int>(stream.bitsPerSample / bitsPerByte));
    if (MaterialInfo::write_header(cookie, header) == MaterialInfo::failed) {
        return false;
    }
    file->metadata->audioSampleCount = 0;
    file->metadata->audioStreams = params.audioMetadata;
    return true;
}

bool fileVision(Ox::Ptr<FileWriteInstance> const& file, Cookie const& cookie,
                MaterialFilename const& material, Ox::FileWriterParams const& params) {
    SystemCache::instance()->addFile(cookie, material, false);
    SAV_HEADER header;
    PlayPriv::make_vision_header(file, params.video, &header);
    return MaterialInfo::write_header(cookie, header) != MaterialInfo::failed;
}

}  // namespace

Ox::Ptr<FileWriteInstance> PlayFileCache::create(Cookie const& cookie, Ox::FileWriterParams const& params) {
    MaterialFilename const material = getMaterialFilenameForCookie(cookie, params.drive);
    LightweightString<wchar_t> const path = pathFor(material, params);
    Ox::Ptr<FileWriteInstance> file = PlayUtil::openWrite(path, params);
    if (!file) {
        zorn_printf("PlayFile[%s]::create: *** Unable to create material file (%s) ***\n",
                    cookie.asString(false).c_str(), toUTF8(path).c_str());
        zorn_printf("plf_open: failed to open file\n");
        return {};
    }
    bool isFiled = true;
    if (cookie.type() == 'S') {
        isFiled = fileSound(file, cookie, material, params);
    } else if (cookie.type() == 'V') {
        isFiled = fileVision(file, cookie, material, params);
    } else {
        zorn_printf("PlayFile[%s]::create: *** Bad type ***\n", cookie.asString(false).c_str());
    }
    return isFiled ? file : Ox::Ptr<FileWriteInstance>();
}
