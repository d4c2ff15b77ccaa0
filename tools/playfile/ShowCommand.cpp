#include "tools/playfile/ShowCommand.h"

#include "playfile/playfile.h"
#include "tools/playfile/Clip.h"
#include "tools/playfile/CommandError.h"
#include "tools/playfile/ContactSheet.h"
#include "tools/playfile/FileReport.h"
#include "tools/playfile/Output.h"
#include "tools/playfile/PngWriter.h"
#include "tools/playfile/SoundReport.h"
#include "tools/playfile/Statistics.h"
#include "tools/playfile/Text.h"

namespace cli {
namespace {

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

/// The facts of the picture that fit on a line.
std::string pictureText(PlayFileMetadataRep const& metadata, Json const& video) {
    Json const& rate = video["frameRate"];
    Json const& format = video["picture"]["pixelFormat"];
    return "video: " + std::to_string(metadata.image.getWidth()) + "x" +
           std::to_string(metadata.image.getHeight()) + " " +
           (format.is_string() ? format.get<std::string>() : "of unknown pixel format") + ", " +
           std::to_string(metadata.videoSampleCount) + " frames, " + rate["numerator"].dump() + "/" +
           rate["denominator"].dump() + " a second, " + video["fields"].get<std::string>() +
           ", orientation " + video["orientation"]["name"].get<std::string>();
}

/// A line for each audio stream.
std::string soundText(PlayFileMetadataRep const& metadata) {
    std::string text;
    for (Aud::Metadata const& stream : metadata.audioStreams) {
        text += (text.empty() ? "audio: " : "\naudio: ") + printable(stream.codec) + ", " +
                std::to_string(stream.channels) + " channels, " + fixed(stream.sampleRate, 0) + " Hz";
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
        "show", "Reads a file in every way, and writes pictures of its frames and sound and a report of it");
    command_->add_option("FILE", file_, "The media file")->required();
    command_->add_option("--out", out_, "The folder for the pictures and the report")->required();
}

int ShowCommand::run(SessionOptions const& options) {
    OutputFolder const folder(out_);
    Session session(options);
    session.loadReaders();
    Clip const clip(session, file_);
    Clock::time_point const start = Clock::now();
    Ox::Ptr<FileReadInstance> const file = clip.openAny();
    Clock::duration const opening = Clock::now() - start;
    if (file->metadata->videoInfoCount == 0 && !clip.trySound()) {
        throw CommandError(inQuotes(clip.input().path()) +
                           " has neither pictures nor sound that can be read; 'playfile info' tells what it "
                           "holds");
    }
    ReaderChoice const choice = explainChoice(session.log(), *file);
    writeLine("file: " + printable(clip.input().path()));
    writeLine(choiceText(choice));

    Json report;
    report["version"] = playfileDllVersionStr();
    report["file"] = describeFile(clip, file, choice);
    report["readerChoice"] = describeChoice(choice);
    std::uint64_t failed = 0;
    if (file->metadata->videoInfoCount != 0) {
        failed += showPicture(clip, *file, opening, folder, report);
    }
    failed += showSound(session, clip, *file, folder, report);
    report["statistics"] = describeStatistics();
    writeLine(toPlainText(report["statistics"]));
    writeLine("report: " + printable(folder.writeText(reportName, toJsonText(report) + '\n')));
    if (failed != 0) {
        throw CommandError(std::to_string(failed) + " reads of " + inQuotes(clip.input().path()) +
                           " failed; the file may be damaged");
    }
    return exitSuccess;
}

std::uint64_t ShowCommand::showPicture(Clip const& clip, FileReadInstance const& file,
                                       Clock::duration opening, OutputFolder const& folder, Json& report) {
    writeLine(pictureText(*file.metadata, report["file"]["video"]));
    Measurements const measurements = measure(clip, file, opening);
    ContactSheet const sheet = makeContactSheet(clip, file);
    report["measurements"] = describeMeasurements(measurements);
    report["contactSheet"]["frames"] = sheet.frames;
    report["contactSheet"]["failed"] = sheet.failed;
    writeLine(measurementTable(measurements));
    writeLine("contact sheet: " + printable(writeSheet(folder, sheet.picture)));
    return measurements.failed() + sheet.failed.size();
}

std::uint64_t ShowCommand::showSound(Session& session, Clip const& clip, FileReadInstance const& file,
                                     OutputFolder const& folder, Json& report) {
    if (file.metadata->audioStreams.empty()) {
        return 0;
    }
    writeLine(soundText(*file.metadata));
    std::optional<SoundReport> const sound = readSound(session, clip);
    if (!sound) {
        return 0;
    }
    report["sound"] = describeSound(*sound);
    writeLine(soundTable(*sound));
    for (std::string const& path : writeWaveforms(*sound, folder)) {
        writeLine("waveform: " + printable(path));
    }
    return sound->failed;
}

}  // namespace cli
