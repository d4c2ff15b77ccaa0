#include "host/sqlite/SqliteClips.h"

#include "host/sqlite/StatementRun.h"

namespace {

constexpr std::int64_t attributeList = 0;
constexpr std::int64_t settingList = 1;

}  // namespace

#define OF_CLIP " WHERE clip = ?1 AND type = ?2 AND channel = ?3"

struct SqliteClips::Questions {
    template <class Prepare>
    explicit Questions(Prepare const& prepare)
        : get(prepare("SELECT name, log_type, is_image, video_channels, audio_channels, has_settings,"
                      " audio_rate FROM clips" OF_CLIP)),
          texts(prepare("SELECT list, key, value FROM clip_texts" OF_CLIP " ORDER BY list, position")),
          references(prepare("SELECT to_clip, to_type, to_channel, kind, position"
                             " FROM clip_references" OF_CLIP " ORDER BY kind, position")),
          streams(prepare("SELECT channels, sample_format, sample_bytes, sample_bits, frame_samples,"
                          " rate, codec, is_compressed FROM clip_streams" OF_CLIP " ORDER BY position")) {}

    SqliteStatement get;
    SqliteStatement texts;
    SqliteStatement references;
    SqliteStatement streams;
};

struct SqliteClips::Statements {
    explicit Statements(ProjectFile& file)
        : look([&](char const* sql) { return file.prepareLook(sql); }),
          inChange([&](char const* sql) { return file.prepare(sql); }),
          put(file.prepare("INSERT INTO clips (clip, type, channel, name, log_type, is_image, video_channels,"
                           " audio_channels, has_settings, audio_rate)"
                           " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10)")),
          putText(file.prepare("INSERT INTO clip_texts (clip, type, channel, list, position, key, value)"
                               " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7)")),
          putReference(file.prepare("INSERT INTO clip_references (clip, type, channel, kind, position,"
                                    " to_clip, to_type, to_channel)"
                                    " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8)")),
          putStream(file.prepare("INSERT INTO clip_streams (clip, type, channel, position, channels,"
                                 " sample_format, sample_bytes, sample_bits, frame_samples, rate, codec,"
                                 " is_compressed)"
                                 " VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12)")),
          remove(file.prepare("DELETE FROM clips" OF_CLIP)),
          removeTexts(file.prepare("DELETE FROM clip_texts" OF_CLIP)),
          removeReferences(file.prepare("DELETE FROM clip_references" OF_CLIP)),
          removeStreams(file.prepare("DELETE FROM clip_streams" OF_CLIP)) {}

    Questions look;
    Questions inChange;
    SqliteStatement put;
    SqliteStatement putText;
    SqliteStatement putReference;
    SqliteStatement putStream;
    SqliteStatement remove;
    SqliteStatement removeTexts;
    SqliteStatement removeReferences;
    SqliteStatement removeStreams;
};

#undef OF_CLIP

SqliteClips::SqliteClips(std::shared_ptr<ProjectFile> file) : file_(std::move(file)) {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = std::make_unique<Statements>(*file_);
}

SqliteClips::~SqliteClips() {
    std::scoped_lock const scope(file_->lock, file_->lookLock);
    statements_ = nullptr;
}

std::optional<ClipRecord> SqliteClips::find(Cookie const& clip) {
    std::optional<ClipRecord> record;
    file_->look([&] { record = read(statements_->look, clip); });
    return record;
}

std::vector<std::pair<Cookie, std::uint32_t>> SqliteClips::getAll() {
    std::vector<std::pair<Cookie, std::uint32_t>> all;
    std::lock_guard const scope(file_->lookLock);
    SqliteStatement list =
        file_->prepareLook("SELECT clip, type, channel, log_type FROM clips ORDER BY clip, type, channel");
    for (StatementRun rows(list); rows.nextRow();) {
        all.emplace_back(rows.cookie(0), rows.count(3));
    }
    return all;
}

bool SqliteClips::change(Cookie const& clip, Change const& change) {
    std::lock_guard const scope(file_->lock);
    return file_->change("the clip " + clip.asString(true).str(), [&] {
        std::optional<ClipRecord> record = read(statements_->inChange, clip);
        return !change(record) || write(clip, record);
    });
}

/// Requires the lock of the questions and a transaction.
std::optional<ClipRecord> SqliteClips::read(Questions& questions, Cookie const& clip) {
    ClipRecord record;
    {
        StatementRun row(questions.get);
        row.with(clip);
        if (!row.nextRow()) {
            return std::nullopt;
        }
        record.name = row.wideText(0);
        record.logType = row.count(1);
        record.isImage = row.number(2) != 0;
        record.videoChannels = row.count(3);
        record.audioChannels = row.count(4);
        if (row.number(5) != 0) {
            record.decodeSettings.emplace();
        }
        record.audioInputRate = Aud::SampleRate(row.real(6));
    }
    readTexts(questions.texts, clip, record);
    readReferences(questions.references, clip, record);
    readStreams(questions.streams, clip, record);
    return record;
}

void SqliteClips::readTexts(SqliteStatement& statement, Cookie const& clip, ClipRecord& record) {
    StatementRun rows(statement);
    rows.with(clip);
    while (rows.nextRow()) {
        if (rows.number(0) == attributeList) {
            record.attributes[rows.text(1)] = rows.text(2);
        } else if (record.decodeSettings) {
            record.decodeSettings->set(rows.text(1), rows.text(2));
        }
    }
}

void SqliteClips::readReferences(SqliteStatement& statement, Cookie const& clip, ClipRecord& record) {
    StatementRun rows(statement);
    rows.with(clip);
    while (rows.nextRow()) {
        std::vector<Cookie>& references = record.references[rows.count(3)];
        bool const isReference = rows.number(4) != 0;
        if (isReference) {
            references.push_back(rows.cookie(0));
        }
    }
}

void SqliteClips::readStreams(SqliteStatement& statement, Cookie const& clip, ClipRecord& record) {
    StatementRun rows(statement);
    rows.with(clip);
    while (rows.nextRow()) {
        Aud::Metadata& stream = record.audioStreams.emplace_back();
        stream.channels = rows.count(0);
        stream.sampleFormat = rows.count(1);
        stream.bytesPerSample = rows.count(2);
        stream.bitsPerSample = rows.count(3);
        stream.samplesPerCodecFrame = rows.count(4);
        stream.sampleRate = rows.real(5);
        stream.codec = rows.text(6);
        stream.isCompressed = rows.number(7) != 0;
    }
}

bool SqliteClips::isThere(Cookie const& clip) {
    return StatementRun(statements_->inChange.get).with(clip).nextRow();
}

bool SqliteClips::removeRows(Cookie const& clip) {
    return StatementRun(statements_->remove).with(clip).isDone() &&
           StatementRun(statements_->removeTexts).with(clip).isDone() &&
           StatementRun(statements_->removeReferences).with(clip).isDone() &&
           StatementRun(statements_->removeStreams).with(clip).isDone();
}

bool SqliteClips::write(Cookie const& clip, std::optional<ClipRecord> const& record) {
    if (isThere(clip) && !removeRows(clip)) {
        return false;
    }
    if (!record) {
        return true;
    }
    bool const isWritten = StatementRun(statements_->put)
                               .with(clip)
                               .with(record->name)
                               .with(std::int64_t{record->logType})
                               .with(std::int64_t{record->isImage})
                               .with(std::int64_t{record->videoChannels})
                               .with(std::int64_t{record->audioChannels})
                               .with(std::int64_t{record->decodeSettings.has_value()})
                               .withReal(record->audioInputRate.calcCombinedSampleRate())
                               .isDone();
    return isWritten && writeTexts(clip, *record) && writeReferences(clip, *record) &&
           writeStreams(clip, *record);
}

bool SqliteClips::writeTexts(Cookie const& clip, ClipRecord const& record) {
    auto const writeAll = [&](std::int64_t list, auto const& texts) {
        std::int64_t position = 0;
        for (auto const& [key, value] : texts) {
            StatementRun row(statements_->putText);
            row.with(clip).with(list).with(position++).with(key.view()).with(value.view());
            if (!row.isDone()) {
                return false;
            }
        }
        return true;
    };
    return writeAll(attributeList, record.attributes) &&
           (!record.decodeSettings || writeAll(settingList, *record.decodeSettings));
}

bool SqliteClips::writeReferences(Cookie const& clip, ClipRecord const& record) {
    auto const write = [&](std::uint32_t kind, std::int64_t position, Cookie const& to) {
        return StatementRun(statements_->putReference)
            .with(clip)
            .with(std::int64_t{kind})
            .with(position)
            .with(to)
            .isDone();
    };
    for (auto const& [kind, references] : record.references) {
        std::int64_t position = 0;
        if (!write(kind, position, Cookie())) {
            return false;
        }
        for (Cookie const& to : references) {
            if (!write(kind, ++position, to)) {
                return false;
            }
        }
    }
    return true;
}

bool SqliteClips::writeStreams(Cookie const& clip, ClipRecord const& record) {
    std::int64_t position = 0;
    for (Aud::Metadata const& stream : record.audioStreams) {
        bool const isWritten = StatementRun(statements_->putStream)
                                   .with(clip)
                                   .with(position++)
                                   .with(std::int64_t{stream.channels})
                                   .with(std::int64_t{stream.sampleFormat})
                                   .with(std::int64_t{stream.bytesPerSample})
                                   .with(std::int64_t{stream.bitsPerSample})
                                   .with(std::int64_t{stream.samplesPerCodecFrame})
                                   .withReal(stream.sampleRate)
                                   .with(stream.codec.view())
                                   .with(std::int64_t{stream.isCompressed})
                                   .isDone();
        if (!isWritten) {
            return false;
        }
    }
    return true;
}
