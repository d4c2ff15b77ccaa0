#pragma once

#include <string>

#include "host/sidecar/HeaderFiles.h"
#include "toolkit/catalogue/Cookie.h"
#include "tools/playfile/LogCapture.h"
#include "tools/playfile/PreferencesFile.h"

namespace cli {

/// What the user may say about every command.
struct SessionOptions {
    /// Folders separated by ':'; empty for the usual place.
    std::string pluginPath;
    /// The file of the preferences; empty for the user's own.
    std::string preferences;
    bool isVerbose = false;
};

/// The library made ready for a command: log, preferences, plug-ins, catalogue and headers.
///
/// Ownership  There is one at a time; its end closes every file.
class Session {
public:
    /// Plug-ins that don't load are told on standard error, and the others are used.
    ///
    /// @throws CommandError  if the preferences that were named can't be used
    explicit Session(SessionOptions const& options);
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    /// Readies the readers. Commands that open no file do without.
    void loadReaders();

    void addToCatalogue(Cookie const& cookie, LightweightString<wchar_t> const& filename);

    [[nodiscard]] std::string const& pluginPath() const { return pluginPath_; }
    [[nodiscard]] LogCapture const& log() const { return log_; }

private:
    LogCapture log_;
    PreferencesFile preferences_;
    HeaderFiles headers_;
    std::string const pluginPath_;
};

}  // namespace cli
