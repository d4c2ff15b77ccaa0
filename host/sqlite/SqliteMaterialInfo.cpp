#include "host/sqlite/SqliteMaterialInfo.h"

#include "host/sqlite/StatementRun.h"

struct SqliteMaterialInfo::Statements {
    explicit Statements(ProjectFile& file)
        : get(file.prepareLook("SELECT samples FROM start_offsets"
                               " WHERE clip = ?1 AND type = ?2 AND channel = ?3")),
          put(file.prepare("INSERT OR REPLACE INTO start_offsets (clip, type, channel, samples)"
                           " VALUES (?1, ?2, ?3, ?4)")),
          removeClip(file.prepare("DELETE FROM start_offsets WHERE clip = ?1")) {}

    SqliteStatement get;
    SqliteStatement put;
    SqliteStatement removeClip;
};

SqliteMaterialInfo::SqliteMaterialInfo(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = std::make_unique<Statements>(*file_);
}

SqliteMaterialInfo::~SqliteMaterialInfo() {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = nullptr;
}

std::int32_t SqliteMaterialInfo::getStartOffset(Cookie const& cookie) {
    {
        std::lock_guard const scope(file_->lookLock);
        StatementRun row(statements_->get);
        row.with(cookie);
        if (row.nextRow()) {
            return static_cast<std::int32_t>(row.number(0));
        }
    }
    return headers_.getStartOffset(cookie);
}

bool SqliteMaterialInfo::writeHeader(Cookie const& cookie, SAV_HEADER const& header) {
    return headers_.writeHeader(cookie, header);
}

bool SqliteMaterialInfo::canWriteHeader(LightweightString<wchar_t> const& material) {
    return headers_.canWriteHeader(material);
}

bool SqliteMaterialInfo::readHeader(Cookie const& cookie, SAV_HEADER& header) {
    return headers_.readHeader(cookie, header);
}

bool SqliteMaterialInfo::setStartOffset(Cookie const& cookie, std::int32_t samples) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the start offset of " + cookie.asString().str(),
                         [&] { return write(cookie, samples); });
}

bool SqliteMaterialInfo::write(Cookie const& cookie, std::int32_t samples) {
    return StatementRun(statements_->put).with(cookie).with(std::int64_t{samples}).isDone();
}

bool SqliteMaterialInfo::removeClip(Cookie const& clip) {
    return StatementRun(statements_->removeClip).with(clip.asString(true).view()).isDone();
}
