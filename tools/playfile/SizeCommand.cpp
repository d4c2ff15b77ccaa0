#include "tools/playfile/SizeCommand.h"

#include <array>

#include "files/PlayUtil.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/InputFile.h"
#include "tools/playfile/JsonText.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

/// "1.5 MB" of a number of bytes; of a few bytes just their number.
std::string readableSize(unsigned long bytes) {
    constexpr std::array units{"bytes", "kB", "MB", "GB", "TB"};
    constexpr double step = 1000.0;
    auto size = static_cast<double>(bytes);
    std::size_t unit = 0;
    while (size >= step && unit + 1 < units.size()) {
        size /= step;
        ++unit;
    }
    return fixed(size, unit == 0 ? 0 : 1) + ' ' + units[unit];
}

void writeSize(unsigned long bytes, std::string const& name) {
    writeLine(std::to_string(bytes) + "  " + readableSize(bytes) + "  " + printable(name));
}

}  // namespace

void SizeCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand("size", "Tells how many bytes the material of clips takes");
    command_->add_option("FILE", files_, "The media files")->required();
    command_->add_flag("--json", isJson_, "Write JSON");
}

int SizeCommand::run(SessionOptions const& options) {
    Session session(options);
    Json report;
    unsigned long total = 0;
    report["files"] = Json::array();
    for (std::string const& file : files_) {
        InputFile input(file);
        input.requireReadable();
        Cookie const cookie = input.cookie('V', 0);
        session.addToCatalogue(cookie, input.widePath());
        unsigned long bytes = 0;
        PlayUtil::get_total_size(cookie, &bytes);
        total += bytes;
        report["files"].push_back({{"file", input.path()}, {"bytes", bytes}});
    }
    report["bytes"] = total;
    if (isJson_) {
        writeLine(toJsonText(report));
        return exitSuccess;
    }
    for (Json const& file : report["files"]) {
        writeSize(file["bytes"].get<unsigned long>(), file["file"].get<std::string>());
    }
    if (files_.size() > 1) {
        writeSize(total, "in all");
    }
    return exitSuccess;
}

}  // namespace cli
