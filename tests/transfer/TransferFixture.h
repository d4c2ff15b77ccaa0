#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/fakes/FakeCatalogue.h"
#include "tests/fakes/FakeProjectSpaces.h"
#include "tests/fakes/LogRecorder.h"
#include "tests/fakes/TranscriptLog.h"
#include "tests/fakes/TransferFiles.h"
#include "tests/support/TemporaryFolder.h"
#include "toolkit/catalogue/DiskManager.h"

namespace test {

/// Two drives, M and N, a folder of things that lie elsewhere, and a store whose names begin with "far://".
///
/// All that is done to files, catalogue and clips, and all that a task writes to its log, is recorded in one order.
class TransferFixture : public testing::Test {
protected:
    using Lines = CallLog::Lines;

    TransferFixture();
    ~TransferFixture() override;

    static Cookie clip(unsigned number = 1) { return makeCookie(number, 'E', Cookie::wholeClip); }
    static Cookie video(unsigned number = 1) { return makeCookie(number, 'V', 0); }
    static Cookie sound(unsigned number, std::uint8_t channel = 1) {
        return makeCookie(number, 'S', channel);
    }

    /// A clip that can be opened.
    void addClip(unsigned number, std::string const& name, FakeCatalogue::ClipFacts facts = {});
    /// Writes a file below the fixture's folder; its full name.
    LightweightString<wchar_t> write(std::string const& path, std::string const& contents);
    [[nodiscard]] LightweightString<wchar_t> full(std::string const& path) const {
        return folder_.name(path);
    }

    /// A file at its place on a drive.
    static MediaFileInfo own(DriveId drive, std::string const& path, std::uint64_t size = 1);
    /// A link on a drive to a file below the fixture's folder, or to a remote one.
    [[nodiscard]] MediaFileInfo linked(DriveId drive, std::string const& path, std::string const& target,
                                       std::uint64_t size = 1) const;
    static MediaFileInfo asProxy(MediaFileInfo info) {
        info.isProxyFile = true;
        return info;
    }

    /// What was recorded, as far as it holds one of these beginnings.
    [[nodiscard]] Lines recorded(std::vector<std::string> const& beginnings) const;
    /// What was done to files, and what was written to the log.
    [[nodiscard]] Lines transcript() const { return recorded({"copy", "rename", "delete", "folder", "log"}); }

    TemporaryFolder folder_;
    std::shared_ptr<CallLog> const calls_ = std::make_shared<CallLog>();
    FakeCatalogue catalogue_{calls_};
    FakeProjectSpaces spaces_;
    TransferFiles files_{calls_, folder_.file("")};
    Ox::Ptr<TranscriptLog> const log_ = Ox::makePtr<TranscriptLog>(calls_);
    LogRecorder console_;
};

}  // namespace test
