#include "tests/fakes/ScriptedFileManager.h"

#include <utility>

namespace {

/// A handle that records its end.
class ScriptedHandle : public iFile {
public:
    ScriptedHandle(std::shared_ptr<CallLog> calls, std::string name, std::function<void()> onRelease)
        : calls_(std::move(calls)), name_(std::move(name)), onRelease_(std::move(onRelease)) {}
    ~ScriptedHandle() override {
        calls_->add("fm.release " + name_);
        if (onRelease_) {
            onRelease_();
        }
    }
    std::uint32_t read(void*, std::uint32_t) override { return 0; }
    std::uint32_t write(void const*, std::uint32_t) override { return 0; }
    bool setPosition(std::uint64_t) override { return false; }
    std::uint64_t getPosition() const override { return 0; }

private:
    std::shared_ptr<CallLog> const calls_;
    std::string const name_;
    std::function<void()> const onRelease_;
};

}  // namespace

ScriptedFileManager::ScriptedFileManager(std::shared_ptr<CallLog> calls)
    : calls_(std::move(calls)), old_(installFileManager(this)) {}

ScriptedFileManager::~ScriptedFileManager() {
    installFileManager(old_);
}

bool ScriptedFileManager::isRemote(LightweightString<wchar_t> const& path) {
    if (remotePrefix.empty()) {
        return false;
    }
    calls_->add("fm.isRemote " + narrow(path));
    return narrow(path).starts_with(remotePrefix);
}

bool ScriptedFileManager::fileExists(LightweightString<wchar_t> const& path) {
    std::string const name = narrow(path);
    calls_->add("fm.exists " + name);
    existsGate.pass();
    return files_.contains(name);
}

Ox::Ptr<iFile> ScriptedFileManager::openFile(LightweightString<wchar_t> const& name, std::uint32_t access,
                                             std::uint32_t behaviour, std::uint32_t share,
                                             std::uint32_t option) {
    std::string text = "fm.open " + narrow(name);
    for (std::uint32_t const argument : {access, behaviour, share, option}) {
        text += " " + std::to_string(argument);
    }
    calls_->add(text);
    if (!opensFiles) {
        return {};
    }
    return Ox::makePtr<ScriptedHandle>(calls_, narrow(name), onRelease);
}

LightweightString<wchar_t> ScriptedFileManager::getMountedFilename(LightweightString<wchar_t> const& name) {
    calls_->add("fm.mount " + narrow(name));
    return wide(mount(narrow(name)));
}

LightweightString<wchar_t> ScriptedFileManager::getDisplayFilename(LightweightString<wchar_t> const& name) {
    return wide(display(narrow(name)));
}
