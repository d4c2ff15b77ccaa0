#include "tools/playfile/HeaderCommand.h"

#include <algorithm>
#include <array>
#include <fstream>

#include "header/HeaderOfFile.h"
#include "host/sidecar/HeaderFiles.h"
#include "toolkit/catalogue/MaterialInfo.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/HeaderCheck.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// The header that material made of this file would get.
SAV_HEADER headerFor(Ox::Ptr<FileReadInstance> const& file) {
    PlayFileMetadataRep const& metadata = *file->metadata;
    bool const isSoundAlone = metadata.videoInfoCount == 0 && !metadata.audioStreams.empty();
    return isSoundAlone ? soundHeaderOf(file, 0, metadata.getTotalChannels()) : visionHeaderOf(file);
}

/// Keys and values in the order of the text.
Json entriesOf(SAV_HEADER& header) {
    std::array<char, savHeaderTextBytes> buffer{};
    header_to_string(&header, buffer.data());
    std::string const text = buffer.data();
    Json entries = Json::object();
    for (std::size_t begin = 0; begin < text.size();) {
        std::size_t const end = std::min(text.find("\n\r", begin), text.size());
        std::string const line = text.substr(begin, end - begin);
        std::size_t const blank = std::min(line.find(' '), line.size());
        entries[line.substr(0, blank)] = blank < line.size() ? line.substr(blank + 1) : "";
        begin = end + 2;
    }
    return entries;
}

/// As much of a file as tells whether it is too long for a header.
std::string contentsOf(std::string const& path) {
    std::string contents(savHeaderTextBytes, '\0');
    std::ifstream stream(path, std::ios::binary);
    stream.read(contents.data(), savHeaderTextBytes);
    contents.resize(static_cast<std::size_t>(stream.gcount()));
    return contents;
}

}  // namespace

void HeaderCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "header", "Shows the header that is stored with a media file, or the one that it would get");
    CLI::Option* const file = command_->add_option("FILE", file_, "The media file");
    command_->add_option("--check", text_, "Tell what is wrong in this text of a header, and where")
        ->excludes(file);
    command_->add_flag("--json", isJson_, "Write JSON");
}

int HeaderCommand::run(SessionOptions const& options) {
    if (file_.empty() && text_.empty()) {
        throw CommandError("header: name a media file, or a text with --check", exitUsage);
    }
    return text_.empty() ? show(options) : check();
}

int HeaderCommand::show(SessionOptions const& options) const {
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Cookie const sound = clip.addChannel(session, 1);
    SAV_HEADER header;
    bool const isStored =
        MaterialInfo::read_header(clip.videoCookie(), header) || MaterialInfo::read_header(sound, header);
    if (!isStored) {
        header = headerFor(clip.openAny());
    }
    Json entries = entriesOf(header);
    if (isStored) {
        entries["ox_ver"] = printable(std::string(header.ox_ver));
    }
    std::string const name = narrowName(HeaderFiles::nameFor(clip.input().widePath()));
    Json report;
    report["file"] = clip.input().path();
    report["storedIn"] = isStored ? Json(name) : Json();
    report["header"] = entries;
    if (isJson_) {
        writeLine(toJsonText(report));
        return exitSuccess;
    }
    writeLine(isStored ? "stored in " + printable(name) + ":" : "not stored; it would be:");
    for (auto const& [key, value] : entries.items()) {
        writeLine(key + ' ' + printable(value.get<std::string>()));
    }
    return exitSuccess;
}

int HeaderCommand::check() const {
    InputFile input(text_);
    input.requireReadable();
    std::vector<HeaderProblem> const problems = checkHeaderText(contentsOf(input.path()));
    Json report;
    report["file"] = input.path();
    report["problems"] = Json::array();
    for (HeaderProblem const& problem : problems) {
        report["problems"].push_back({{"line", problem.line}, {"text", problem.text}});
        if (!isJson_) {
            std::string const place = problem.line == 0 ? "" : ":" + std::to_string(problem.line);
            writeLine(printable(text_) + place + ": " + problem.text);
        }
    }
    if (isJson_) {
        writeLine(toJsonText(report));
    } else if (problems.empty()) {
        writeLine(printable(text_) + ": nothing is wrong");
    }
    return problems.empty() ? exitSuccess : exitFailure;
}

}  // namespace cli
