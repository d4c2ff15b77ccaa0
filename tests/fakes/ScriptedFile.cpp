#include "tests/fakes/ScriptedFile.h"

#include <cstring>
#include <utility>

#include "tests/fakes/ByteHolder.h"

void FileScript::noteRead(std::uint32_t frame) {
    std::lock_guard const scope(lock_);
    framesRead_.push_back(frame);
    readBy = std::this_thread::get_id();
}

std::vector<std::uint32_t> FileScript::framesRead() const {
    std::lock_guard const scope(lock_);
    return framesRead_;
}

void FileScript::keep(Ox::Ptr<VideoReadRequest> const& request) {
    std::lock_guard const scope(lock_);
    kept_.push_back(request);
}

std::vector<Ox::Ptr<VideoReadRequest>> FileScript::takeKept() {
    std::lock_guard const scope(lock_);
    return std::exchange(kept_, {});
}

void FileScript::noteOptions(configb const& values) {
    std::lock_guard const scope(lock_);
    optionsSet_.push_back(values);
}

std::vector<configb> FileScript::optionsSet() const {
    std::lock_guard const scope(lock_);
    return optionsSet_;
}

ScriptedFile::ScriptedFile(std::string const& name, OpenType type, FileScriptPtr script,
                           DecodeFormat const& format)
    : FileReadInstance(wide(name), format, type), script_(std::move(script)), name_(name) {}

ScriptedFile::~ScriptedFile() {
    script_->destroyGate.pass();
    script_->destroyedBy = std::this_thread::get_id();
    ++script_->destroyedCount;
    note("destroy");
}

void ScriptedFile::OxFileIxCache_open(Ox::Ptr<IndexInfoRep>& info, unsigned int fileFrame) {
    note(("index " + std::to_string(fileFrame) + (info ? " set" : " empty")).c_str());
    if (script_->indexInfo) {
        info = script_->indexInfo(fileFrame);
    }
}

void ScriptedFile::updateMetadataFrom(Ox::Ptr<PlayFileMetadataRep> const& other) {
    note("updateMetadataFrom");
    FileReadInstance::updateMetadataFrom(other);
}

void ScriptedFile::setDecodeOptionValues(configb const& values) {
    note("setDecodeOptionValues");
    script_->noteOptions(values);
}

unsigned int ScriptedFile::queueReadRequest(Ox::Ptr<VideoReadRequest>& request) {
    return script_->queueAnswer ? *script_->queueAnswer : FileReadInstance::queueReadRequest(request);
}

unsigned int ScriptedFile::readVideo(Ox::Ptr<FrameBufferRep>& buffer, Ox::Ptr<VideoReadRequest>& request) {
    script_->noteRead(request->frame);
    script_->readGate.pass();
    if (script_->duringRead) {
        script_->duringRead(request);
    }
    if (script_->keepsRequests) {
        script_->keep(request);
    }
    buffer = script_->makeBuffer ? script_->makeBuffer(request->frame) : makeNumberedBuffer(request->frame);
    return script_->answer(request->frame);
}

void ScriptedFile::purge() {
    note("purge");
    FileReadInstance::purge();
}

void ScriptedFile::limitUsage() {
    note("limitUsage");
    FileReadInstance::limitUsage();
}

Ox::Ptr<FileReadInstance> makeVideoFile(FileScriptPtr const& script, std::uint32_t sampleCount) {
    auto const file = Ox::makePtr<ScriptedFile>("scripted", OpenType::video, script);
    file->metadata->videoSampleCount = sampleCount;
    return file;
}

Ox::Ptr<FrameBufferRep> makeNumberedBuffer(std::uint32_t frame) {
    constexpr std::uint32_t width = 4;
    constexpr std::uint32_t height = 2;
    auto const bytes = Ox::makePtr<ByteHolder>(width * height);
    std::memcpy(bytes->getBuffer(), &frame, sizeof frame);
    Ox::Image::Surface surface(width, height, Ox::Image::gray8, 8, 8, Ox::Image::layoutTopDown,
                               Ox::Image::showForeignMemory, width);
    surface.setDataPtr(bytes);
    return Ox::makePtr<FrameBufferRep>(surface, frame);
}

std::uint32_t numberOf(Ox::Ptr<iObject> const& buffer) {
    auto const frames = Ox::dynamicPtrCast<FrameBufferRep>(buffer);
    Ox::Image::Surface surface;
    std::uint32_t number = 0xFFFFFFFF;
    if (frames && frames->getSurface(0, surface) && surface.getPlane(0).data) {
        std::memcpy(&number, surface.getPlane(0).data, sizeof number);
    }
    return number;
}
