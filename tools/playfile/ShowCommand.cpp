#include "tools/playfile/ShowCommand.h"

#include <chrono>

#include "playfile/playfile.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/ContactSheet.h"
#include "tools/playfile/FileReport.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/PngWriter.h"
#include "tools/playfile/Statistics.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

using Clock = std::chrono::steady_clock;

char const* const sheetName = "contact_sheet.png";
char const* const reportName = "report.json";

std::string choiceText(ReaderChoice const& choice) {
    std::string text = "reader: " + printable(choice.reader) + "\n  asked, in this order:";
    for (ReaderChoice::Opinion const& opinion : choice.opinions) {
        text += "\n    " + printable(opinion.name) +
                (opinion.wouldTry ? " would serve " + opinion.serves : " doesn't try the file");
    }
    text += "\n  what the library said:";
    for (std::string const& message : choice.messages) {
        text += "\n    " + printable(message);
    }
    return text;
}

/// The facts of a file that fit on a line.
std::string streamText(PlayFileMetadataRep const& metadata, Json const& video) {
    Json const& rate = video["frameRate"];
    Json const& format = video["picture"]["pixelFormat"];
    std::string text = "video: " + std::to_string(metadata.image.getWidth()) + "x" +
                       std::to_string(metadata.image.getHeight()) + " " +
                       (format.is_string() ? format.get<std::string>() : "of unknown pixel format") + ", " +
                       std::to_string(metadata.videoSampleCount) + " frames, " + rate["numerator"].dump() +
                       "/" + rate["denominator"].dump() + " a second, " + video["fields"].get<std::string>() +
                       ", orientation " + video["orientation"]["name"].get<std::string>();
    for (Aud::Metadata const& stream : metadata.audioStreams) {
        text += "\naudio: " + printable(stream.codec) + ", " + std::to_string(stream.channels) +
                " channels, " + fixed(stream.sampleRate, 0) + " Hz";
    }
    return text;
}

std::string writeSheet(OutputFolder const& folder, Picture const& picture) {
    return folder.write(sheetName, [&picture](std::FILE* stream, std::string& error) {
        return writePng(picture, stream, error);
    });
}

}  // namespace

void ShowCommand::declare(CLI::App& program) {
    command_ = program.add_subcommand(
        "show", "Reads a file in every way, and writes a contact sheet and a report of it");
    command_->add_option("FILE", file_, "The media file")->required();
    command_->add_option("--out", out_, "The folder for the contact sheet and the report")->required();
}

int ShowCommand::run(SessionOptions const& options) {
    OutputFolder const folder(out_);
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Clock::time_point const start = Clock::now();
    Ox::Ptr<FileReadInstance> const file = clip.openVideo();
    Measurements const measurements = measure(clip, *file, Clock::now() - start);
    ReaderChoice const choice = explainChoice(session.log(), *file);
    ContactSheet const sheet = makeContactSheet(clip, *file);

    Json report;
    report["version"] = playfileDllVersionStr();
    report["file"] = describeFile(clip, file, choice);
    report["readerChoice"] = describeChoice(choice);
    report["measurements"] = describeMeasurements(measurements);
    report["statistics"] = describeStatistics();
    report["contactSheet"]["frames"] = sheet.frames;
    report["contactSheet"]["failed"] = sheet.failed;

    writeLine("file: " + printable(clip.input().path()));
    writeLine(choiceText(choice));
    writeLine(streamText(*file->metadata, report["file"]["video"]));
    writeLine(measurementTable(measurements));
    writeLine(toPlainText(report["statistics"]));
    writeLine("contact sheet: " + printable(writeSheet(folder, sheet.picture)));
    writeLine("report: " + printable(folder.writeText(reportName, toJsonText(report) + '\n')));
    std::uint64_t const failed = measurements.failed() + sheet.failed.size();
    if (failed != 0) {
        throw CommandError(std::to_string(failed) + " reads of frames of " + inQuotes(clip.input().path()) +
                           " failed; the file may be damaged");
    }
    return exitSuccess;
}

}  // namespace cli
