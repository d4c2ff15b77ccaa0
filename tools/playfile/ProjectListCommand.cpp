/// Clips are listed page by page, and each page is written before the next is read. So a column's width can't depend on
/// what comes later: all but the last have fixed ones, and the last holds the names.
#include "tools/playfile/ProjectListCommand.h"

#include "tools/playfile/ClipFiles.h"
#include "tools/playfile/ClipPages.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/OpenedProject.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"
#include "tools/playfile/TextTable.h"

namespace cli {
namespace {

constexpr std::size_t digitsShown = 8;
constexpr std::size_t idWidth = 10;
constexpr std::size_t stateWidth = 12;
constexpr std::size_t kindWidth = 10;
constexpr std::size_t channelsWidth = 10;
constexpr std::size_t sizeWidth = 11;

/// Takes clips in their order, and writes what it has at the end of a page.
class ClipWriter {
public:
    virtual ~ClipWriter() = default;
    virtual void add(ClipSummary const& clip, std::vector<ClipFile> const& files) = 0;
    virtual void endPage() = 0;
    virtual void finish() = 0;
};

std::string column(std::string const& text, std::size_t width) {
    return padded(text.empty() ? "-" : text, width);
}

class TableWriter final : public ClipWriter {
public:
    TableWriter()
        : text_(column("ID", idWidth) + column("STATE", stateWidth) + column("KIND", kindWidth) +
                column("CHANNELS", channelsWidth) + column("SIZE", sizeWidth) + "NAME\n") {}

    void add(ClipSummary const& clip, std::vector<ClipFile> const& files) override {
        text_ += column(clip.cookie.asString(true).str().substr(0, digitsShown), idWidth) +
                 column(nameOf(stateOf(files)), stateWidth) + column(kindOf(clip), kindWidth) +
                 column(channelsOf(clip), channelsWidth) + column(sizeText(sizeOf(files)), sizeWidth) +
                 printable(narrowName(clip.name)) + '\n';
    }
    void endPage() override {
        text_.pop_back();
        writeLine(text_);
        text_.clear();
    }
    void finish() override {
        if (!text_.empty()) {
            endPage();
        }
    }

private:
    std::string text_;
};

/// An array with a clip a line.
class JsonWriter final : public ClipWriter {
public:
    void add(ClipSummary const& clip, std::vector<ClipFile> const& files) override {
        Json json;
        json["id"] = clip.cookie.asString(true).str();
        json["name"] = narrowName(clip.name);
        json["kind"] = kindOf(clip);
        json["videoChannels"] = clip.videoChannels;
        json["audioChannels"] = clip.audioChannels;
        json["state"] = nameOf(stateOf(files));
        json["bytes"] = sizeOf(files);
        text_ += (isFirst_ ? "[\n" : ",\n") + json.dump(-1, ' ', false, Json::error_handler_t::replace);
        isFirst_ = false;
    }
    void endPage() override {
        writeText(text_);
        text_.clear();
    }
    void finish() override { writeLine(text_ + (isFirst_ ? "[]" : "\n]")); }

private:
    std::string text_;
    bool isFirst_ = true;
};

}  // namespace

void ProjectListCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("ls", "Lists the clips of a project");
    command_->add_option("FILE", file_, "The project's file")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
    command_->add_flag("--check", looks_, "Look now whether the media are there, and keep that");
    command_->footer(
        "The states: here, linked (elsewhere on this machine), remote (in a store), proxy only, missing.\n"
        "Examples:\n  playfile project ls film.project\n  playfile project ls film.project --check --json");
}

int ProjectListCommand::run(SessionOptions const& options) {
    OpenedProject opened(options, file_);
    std::unique_ptr<ClipWriter> writer;
    if (isJson_) {
        writer = std::make_unique<JsonWriter>();
    } else {
        writer = std::make_unique<TableWriter>();
    }
    forEachPage(opened.project(), opened.path(), [&](std::vector<ClipSummary> const& page) {
        for (ClipSummary const& clip : page) {
            writer->add(clip, filesOfClip(clip.cookie, looks_));
        }
        writer->endPage();
    });
    writer->finish();
    return exitSuccess;
}

}  // namespace cli
