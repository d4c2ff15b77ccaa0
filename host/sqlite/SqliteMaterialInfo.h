#pragma once

#include <memory>

#include "host/sidecar/HeaderFiles.h"
#include "host/sqlite/ProjectFile.h"

/// What a project on disk knows of material: the start offsets that it was told. Headers lie in files beside the
/// material, where they go along with it.
///
/// Threads  Any, but where the file's lock is required.
/// Errors   What can't be written is logged.
class SqliteMaterialInfo final : public MaterialInfo::iStore {
public:
    explicit SqliteMaterialInfo(std::shared_ptr<ProjectFile> file);
    ~SqliteMaterialInfo() override;
    SqliteMaterialInfo(SqliteMaterialInfo const&) = delete;
    SqliteMaterialInfo& operator=(SqliteMaterialInfo const&) = delete;

    /// What `setStartOffset` said, else what the header says.
    [[nodiscard]] std::int32_t getStartOffset(Cookie const& cookie) override;
    bool writeHeader(Cookie const& cookie, SAV_HEADER const& header) override;
    [[nodiscard]] bool canWriteHeader(LightweightString<wchar_t> const& material) override;
    [[nodiscard]] bool readHeader(Cookie const& cookie, SAV_HEADER& header) override;

    bool setStartOffset(Cookie const& cookie, std::int32_t samples);
    /// Requires the file's lock, in a change of the file.
    [[nodiscard]] bool write(Cookie const& cookie, std::int32_t samples);
    /// Forgets the offsets of a clip. Requires the file's lock, in a change of the file.
    [[nodiscard]] bool removeClip(Cookie const& clip);

private:
    struct Statements;

    std::shared_ptr<ProjectFile> const file_;
    std::unique_ptr<Statements> statements_;  ///< Under the file's locks, their end as well.
    HeaderFiles headers_;
};
