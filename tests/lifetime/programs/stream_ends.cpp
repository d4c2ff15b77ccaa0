/// Ends in the way that the argument names while a run of frames is being decoded: "held", "dropped", "closed" (after
/// the exit of the library), "decoder" (from inside the decoding).
#include <cstdlib>
#include <map>
#include <string>

#include "playfile/playfile.h"
#include "tests/fakes/Gate.h"
#include "tests/lifetime/TinyMedia.h"
#include "video/StreamingDecodeReader.h"

namespace {

Gate gate{false};
Gate hasDecoded{false};
Gate fileGone{false};
std::function<void()> onDecode = [] { gate.pass(); };

/// A file of runs of four frames of one pixel, that takes its time.
class Stream : public StreamingDecodeReader {
public:
    Stream() : StreamingDecodeReader(L"/dev/null", DecodeFormat(), OpenType::video) {
        metadata->videoSampleCount = 1000;
        metadata->image.setWidth(1);
        metadata->image.setHeight(1);
        metadata->setReadStreaming(true);
    }
    ~Stream() override {
        endStreamDecode();
        tiny::say("file gone");
        fileGone.open();
    }
    LightweightString<char> getDescription() const override { return "stream"; }
    unsigned int decodeFrames(Ox::Ptr<FrameBufferRep>& batch, unsigned int) override {
        onDecode();
        Ox::Image::Surface surface;
        for (std::uint16_t index = 0; index < batch->getNumFrames(); ++index) {
            batch->getSurface(index, surface);
            surface.setDataPtr(Ox::makePtr<tiny::Pixel>());
            surface.set();
        }
        tiny::say("decoded");
        hasDecoded.open();
        return frameRead;
    }
    unsigned int readVideoDirect(Ox::Ptr<FrameBufferRep>&, Ox::Ptr<VideoReadRequest>&) override {
        return noFrame;
    }
    void getDecodeRange(unsigned int frame, unsigned int& start, unsigned int& end) override {
        start = frame - frame % 4;
        end = start + 4;
    }
};

/// A read whose frame the decoder is at work on when this returns.
tiny::RequestPtr startDecoding() {
    tiny::FilePtr const file(new Stream);
    tiny::RequestPtr const request = tiny::ask(file, 1);
    tiny::await(request);
    tiny::say(tiny::statusOf(request));
    return request;
}

tiny::RequestPtr decodeBehindTheGate() {
    tiny::RequestPtr const request = startDecoding();
    static_cast<void>(gate.waitForArrivals(1));
    tiny::atShutdown(400, [] {
        gate.open();
        hasDecoded.pass();
    });
    return request;
}

void exitWithARequest() {
    static tiny::RequestPtr held;
    held = decodeBehindTheGate();
    std::exit(0);
}

/// The file goes here, on this thread, and waits for its decoder.
void dropFile() {
    tiny::RequestPtr request = decodeBehindTheGate();
    tiny::FilePtr const file = request->file;
    request = nullptr;
    file->purge();
    gate.open();
}

/// Nobody but the finished request and its queue hold the file in the end, and each other.
void exitTheLibraryMeanwhile() {
    tiny::RequestPtr held = decodeBehindTheGate();
    playfile_exit();
    gate.open();
    held = nullptr;
    fileGone.pass();
}

void exitFromTheDecoder() {
    onDecode = [] { std::exit(0); };
    static tiny::RequestPtr held;
    tiny::FilePtr const file(new Stream);
    held = tiny::ask(file, 1);
    Gate never(false);
    never.pass();
}

}  // namespace

int main(int, char** arguments) {
    std::map<std::string, void (*)()> const ways{
        {"held", &exitWithARequest},
        {"dropped", &dropFile},
        {"closed", &exitTheLibraryMeanwhile},
        {"decoder", &exitFromTheDecoder},
    };
    ways.at(arguments[1])();
}
