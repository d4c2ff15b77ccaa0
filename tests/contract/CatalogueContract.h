#pragma once

#include <gmock/gmock.h>

#include <memory>
#include <string>
#include <vector>

#include "host/memory/MemoryCatalogue.h"
#include "host/sqlite/SqliteCatalogue.h"
#include "tests/fakes/CallLog.h"
#include "tests/support/TemporaryFolder.h"

namespace test {

/// What every file catalogue must do, run on each that there is.
class CatalogueContract : public ::testing::TestWithParam<bool> {
public:
    void SetUp() override {
        if (GetParam()) {
            std::string error;
            auto file = ProjectFile::open(folder_.name("a.project"), error);
            ASSERT_TRUE(file) << error;
            catalogue_ = std::make_unique<SqliteCatalogue>(std::move(file));
        } else {
            catalogue_ = std::make_unique<MemoryCatalogue>();
        }
    }
    [[nodiscard]] static std::string nameOf(::testing::TestParamInfo<bool> const& tested) {
        return tested.param ? "Sqlite" : "Memory";
    }

    static MediaFileInfo own(std::string const& path, bool isProxy = false) {
        MediaFileInfo file(MaterialFilename(DriveId::none, wide(path)), 7);
        file.isProxyFile = isProxy;
        return file;
    }
    static MediaFileInfo proxy(std::string const& path) { return own(path, true); }
    [[nodiscard]] std::string found(Cookie const& cookie, DecodeFormat const& format = DecodeFormat(1)) {
        LightweightString<wchar_t> name(L"untouched");
        bool const isFound = catalogue_->findFileForCookie(cookie, name, format);
        return isFound ? narrow(name) : "none, " + narrow(name);
    }
    [[nodiscard]] std::vector<std::string> proxiesOf(Cookie const& cookie) {
        std::vector<std::string> names;
        Ox::Ptr<FsysDirectoryEntry> const entry = catalogue_->findEntryForCookie(cookie);
        for (MediaFileInfo const& file : entry->getProxyFiles()) {
            names.push_back(narrow(file.getPhysicalFilename()));
        }
        return names;
    }

    TemporaryFolder folder_;
    Ox::UUID const clip_ = Ox::UUID::generate();
    Cookie const video_{clip_, 'V', 0};
    Cookie const sound_{clip_, 'S', 1};
    std::unique_ptr<SystemCache> catalogue_;
};

}  // namespace test
