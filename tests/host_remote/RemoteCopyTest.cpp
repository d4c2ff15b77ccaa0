#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <stdexcept>
#include <thread>

#include "tests/host_remote/RemoteFixture.h"

namespace test {
namespace {

constexpr std::size_t mebibyte = 1024 * 1024;

/// Where connections are neither made nor refused: those that fit wait already.
class FullListener {
public:
    FullListener() {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const general = reinterpret_cast<sockaddr*>(&address);
        sockets_.push_back(socket(AF_INET, SOCK_STREAM, 0));
        EXPECT_EQ(0, bind(sockets_[0], general, size));
        EXPECT_EQ(0, listen(sockets_[0], 0));
        EXPECT_EQ(0, getsockname(sockets_[0], general, &size));
        port_ = ntohs(address.sin_port);
        for (int number = 0; number < 4; ++number) {
            sockets_.push_back(socket(AF_INET, SOCK_STREAM | SOCK_NONBLOCK, 0));
            static_cast<void>(connect(sockets_.back(), general, size));
        }
    }
    ~FullListener() {
        for (int const each : sockets_) {
            close(each);
        }
    }
    FullListener(FullListener const&) = delete;
    FullListener& operator=(FullListener const&) = delete;

    [[nodiscard]] std::string url() const { return "http://127.0.0.1:" + std::to_string(port_) + "/a"; }

private:
    std::vector<int> sockets_;
    int port_ = 0;
};

class RemoteCopyTest : public RemoteFixture {
protected:
    iFileManager::eCopyRC copyFrom(std::string const& url) { return copyName(folder_.name("to"), wide(url)); }
    static std::string pattern(std::size_t byteCount) {
        std::string text(byteCount, '\0');
        for (std::size_t index = 0; index < byteCount; ++index) {
            text[index] = static_cast<char>(index * 2654435761U >> 13U);
        }
        return text;
    }
    /// A body that stops for good after its first bytes.
    static HttpScript stalling() {
        HttpScript script = file("contents");
        script.stall = HttpScript::eStall::afterBytes;
        script.stallAfter = 3;
        return script;
    }
    /// Copies, and expects this failure and nothing left behind.
    void expectFailure(iFileManager::eCopyRC code, std::string const& path) {
        EXPECT_EQ(code, copy(path));
        EXPECT_FALSE(folder_.holds("to"));
    }
};

TEST_F(RemoteCopyTest, CopiesEveryByte) {
    std::string const contents = pattern(9 * mebibyte + 1);
    server_.on("/a", file(contents));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_TRUE(contents == folder_.read("to"));
}

TEST_F(RemoteCopyTest, CopiesAnEmptyFile) {
    server_.on("/a", file(""));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_TRUE(folder_.holds("to"));
    EXPECT_EQ("", folder_.read("to"));
}

TEST_F(RemoteCopyTest, AsksOnceForACopy) {
    server_.on("/a", file("contents"));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ(1U, server_.count());
}

TEST_F(RemoteCopyTest, TellsProgressEveryFewMebibytesUpToTheWhole) {
    server_.on("/a", file(pattern(32 * mebibyte)));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    unsigned long before = 0;
    for (Step const& step : steps_) {
        EXPECT_LE(step.copied - before, 5 * mebibyte);
        before = step.copied;
    }
    EXPECT_EQ(32 * mebibyte, steps_.back().copied);
    EXPECT_EQ(32 * mebibyte, steps_.back().total);
}

TEST_F(RemoteCopyTest, StopsWhenTold) {
    server_.on("/a", file(pattern(9 * mebibyte)));
    goesOn_ = [](Step const&) { return false; };
    expectFailure(iFileManager::copyStopped, "/a");
    EXPECT_EQ(1U, steps_.size());
}

TEST_F(RemoteCopyTest, StopsWhileTheServerIsSilentBeforeItsAnswer) {
    HttpScript script = file("contents");
    script.stall = HttpScript::eStall::beforeHeaders;
    server_.on("/a", script);
    goesOn_ = [this](Step const&) { return steps_.size() < 3; };
    expectFailure(iFileManager::copyStopped, "/a");
}

TEST_F(RemoteCopyTest, StopsWhileTheServerIsSilentAmidTheFile) {
    server_.on("/a", stalling());
    goesOn_ = [](Step const& step) { return step.copied < 3; };
    expectFailure(iFileManager::copyStopped, "/a");
}

TEST_F(RemoteCopyTest, AStopIsNoFailureForTheLog) {
    server_.on("/a", stalling());
    goesOn_ = [](Step const&) { return false; };
    ASSERT_EQ(iFileManager::copyStopped, copy("/a"));
    EXPECT_TRUE(log_.log().empty());
}

TEST_F(RemoteCopyTest, AnExceptionOfTheProgressLeavesNoDestination) {
    server_.on("/a", file(pattern(9 * mebibyte)));
    goesOn_ = [](Step const&) -> bool { throw std::runtime_error("no"); };
    EXPECT_THROW(static_cast<void>(copy("/a")), std::runtime_error);
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(RemoteCopyTest, AProgressMayAskTheStoreItself) {
    server_.on("/a", file(pattern(9 * mebibyte)));
    server_.on("/b", file("12345"));
    std::uint64_t size = 0;
    goesOn_ = [&](Step const&) {
        size = files().getFileSize(remote("/b"));
        return true;
    };
    EXPECT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ(5U, size);
}

TEST_F(RemoteCopyTest, AStatusOtherThanTwoHundredIsUnreadable) {
    for (int const number : {204, 206, 304, 400, 401, 403, 404, 410, 418, 500, 503}) {
        std::string const path = "/" + std::to_string(number);
        server_.on(path, status(number));
        expectFailure(iFileManager::copyCannotAccess, path);
        EXPECT_TRUE(isLogged(path, {"status " + std::to_string(number), "check"})) << number;
    }
}

TEST_F(RemoteCopyTest, AMissingFileLeavesTheExistingDestinationAsItWas) {
    folder_.write("to", "old");
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("/missing", true));
    EXPECT_EQ("old", folder_.read("to"));
}

TEST_F(RemoteCopyTest, ReplacesAnExistingDestination) {
    folder_.write("to", "something old");
    server_.on("/a", file("new"));
    ASSERT_EQ(iFileManager::copied, copy("/a", true));
    EXPECT_EQ("new", folder_.read("to"));
}

TEST_F(RemoteCopyTest, ReplacesNothingUnlessTold) {
    folder_.write("to", "old");
    server_.on("/a", file("new"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("/a"));
    EXPECT_EQ("old", folder_.read("to"));
    EXPECT_EQ(0U, server_.count());
}

TEST_F(RemoteCopyTest, AFailureAmidTheFileLeavesNoHalfFile) {
    folder_.write("to", "old");
    HttpScript script = file(pattern(mebibyte));
    script.dropAfter = mebibyte / 2;
    server_.on("/a", script);
    EXPECT_EQ(iFileManager::copyFailed, copy("/a", true));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(RemoteCopyTest, FollowsNoLinkAtTheDestination) {
    folder_.write("elsewhere", "kept");
    std::filesystem::create_symlink(folder_.file("elsewhere"), folder_.file("to"));
    server_.on("/a", file("new"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("/a", true));
    EXPECT_EQ("kept", folder_.read("elsewhere"));
}

TEST_F(RemoteCopyTest, DoesNotWaitAtAPipe) {
    ASSERT_EQ(0, mkfifo(folder_.file("to").c_str(), 0600));
    server_.on("/a", file("new"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("/a", true));
}

TEST_F(RemoteCopyTest, APlaceBelowAFileIsUnwritable) {
    folder_.write("file", "contents");
    server_.on("/a", file("new"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copyTo(folder_.name("file/to"), "/a"));
    EXPECT_TRUE(isLogged("/a", {"file/to", "can't be written"}));
    EXPECT_EQ(0U, server_.count());
}

TEST_F(RemoteCopyTest, MakesTheFolderOfItsDestination) {
    server_.on("/a", file("new"));
    EXPECT_EQ(iFileManager::copied, copyTo(folder_.name("none/to"), "/a"));
    EXPECT_EQ("new", folder_.read("none/to"));
}

TEST_F(RemoteCopyTest, AFullDiskFailsTheCopyAndLeavesNoDestination) {
    server_.on("/a", file(pattern(9 * mebibyte)));
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit const least{4 * mebibyte, 4 * mebibyte};
    ASSERT_EQ(0, setrlimit(RLIMIT_FSIZE, &least));
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_EQ(iErrorService::systemErrorBase + EFBIG, OS()->getErrors().getLastError());
    EXPECT_TRUE(isLogged("/a", {"can't be written", "room"}));
}

TEST_F(RemoteCopyTest, DoesNotRemoveAFileThatTookTheDestinationsName) {
    server_.on("/a", file(pattern(9 * mebibyte)));
    goesOn_ = [this](Step const&) {
        std::filesystem::remove(folder_.file("to"));
        folder_.write("to", "another's");
        return false;
    };
    EXPECT_EQ(iFileManager::copyStopped, copy("/a"));
    EXPECT_EQ("another's", folder_.read("to"));
}

TEST_F(RemoteCopyTest, ABodyShorterThanStatedFails) {
    HttpScript script = file("short");
    script.statedLength = "9";
    script.dropAfter = 5;
    server_.on("/a", script);
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_TRUE(isLogged("/a", {"5 bytes", "9 bytes", "again"}));
}

TEST_F(RemoteCopyTest, ABodyLongerThanStatedFails) {
    HttpScript script = file("too long");
    script.statedLength = "3";
    server_.on("/a", script);
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_TRUE(isLogged("/a", {"more came than the stated 3 bytes"}));
}

TEST_F(RemoteCopyTest, AByteTooManyThatComesLateIsNoticed) {
    HttpScript script = file("1234");
    script.statedLength = "3";
    script.stall = HttpScript::eStall::afterBytes;
    script.stallAfter = 3;
    server_.on("/a", script);
    limits_.ending = patience;
    install();
    goesOn_ = [this](Step const& step) {
        if (step.copied == 3) {
            server_.release();
        }
        return true;
    };
    expectFailure(iFileManager::copyFailed, "/a");
}

TEST_F(RemoteCopyTest, ABodyThatNeverEndsFillsNoDisk) {
    HttpScript script = file(pattern(mebibyte));
    script.isEndless = true;
    server_.on("/a", script);
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_LE(steps_.empty() ? 0 : steps_.back().copied, mebibyte);
}

TEST_F(RemoteCopyTest, AServerThatKeepsTheConnectionOpenIsNotWaitedFor) {
    HttpScript script = file("contents");
    script.staysOpen = true;
    server_.on("/a", script);
    EXPECT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ("contents", folder_.read("to"));
}

TEST_F(RemoteCopyTest, ALengthThatIsNotStatedIsRefused) {
    HttpScript script = file("contents");
    script.statesLength = false;
    server_.on("/a", script);
    expectFailure(iFileManager::copyCannotAccess, "/a");
    EXPECT_TRUE(isLogged("/a", {"doesn't state its length", "Content-Length"}));
}

TEST_F(RemoteCopyTest, LengthsThatContradictEachOtherAreRefused) {
    HttpScript script = file("contents");
    script.headers = {"Content-Length: 5"};
    server_.on("/a", script);
    EXPECT_NE(iFileManager::copied, copy("/a"));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(RemoteCopyTest, ALengthThatIsNoNumberIsRefused) {
    for (std::string const length : {"-1", "many", "99999999999999999999999", "1 2"}) {
        HttpScript script = file("contents");
        script.statedLength = length;
        server_.on("/a", script);
        EXPECT_NE(iFileManager::copied, copy("/a")) << length;
        EXPECT_FALSE(folder_.holds("to"));
    }
}

TEST_F(RemoteCopyTest, ALengthThatIsNoNumberIsRefusedThoughOneWasStatedBefore) {
    HttpScript script = file("contents");
    server_.on("HEAD", "/a", script);
    script.statedLength = "many";
    server_.on("GET", "/a", script);
    ASSERT_EQ(8U, files().getFileSize(remote("/a")));
    EXPECT_NE(iFileManager::copied, copy("/a"));
}

TEST_F(RemoteCopyTest, TakesChunksWhoseLengthWasAskedForBefore) {
    HttpScript script = file("contents");
    server_.on("HEAD", "/a", script);
    script.isChunked = true;
    server_.on("GET", "/a", script);
    ASSERT_EQ(8U, files().getFileSize(remote("/a")));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ("contents", folder_.read("to"));
}

TEST_F(RemoteCopyTest, ADroppedConnectionFails) {
    HttpScript script = file(pattern(mebibyte));
    script.dropAfter = mebibyte / 2;
    server_.on("/a", script);
    expectFailure(iFileManager::copyFailed, "/a");
}

TEST_F(RemoteCopyTest, AStoreThatNobodyAnswersForIsUnreadable) {
    std::string const nobody = "http://127.0.0.1:1/a";
    EXPECT_EQ(iFileManager::copyCannotAccess,
              files().copyFile(wide(nobody), folder_.name("to"), false, nullptr, nullptr));
    EXPECT_FALSE(folder_.holds("to"));
    EXPECT_EQ(1U, log_.count("\"" + nobody + "\" was not copied: "));
}

TEST_F(RemoteCopyTest, ASecureConnectionToWhoSpeaksNoneIsUnreadable) {
    std::string const url = "https" + server_.url("/a").substr(4);
    limits_.firstByte = soon;
    limits_.connect = soon;
    install();
    EXPECT_EQ(iFileManager::copyCannotAccess,
              files().copyFile(wide(url), folder_.name("to"), false, nullptr, nullptr));
    EXPECT_FALSE(folder_.holds("to"));
}

TEST_F(RemoteCopyTest, AConnectionThatIsNotMadeInTimeIsUnreadable) {
    FullListener const listener;
    limits_.connect = soon;
    install();
    EXPECT_EQ(iFileManager::copyCannotAccess, copyFrom(listener.url()));
    EXPECT_EQ(1U, log_.count("no connection within 60 ms"));
}

TEST_F(RemoteCopyTest, StopsWhileTheConnectionIsNotMade) {
    FullListener const listener;
    goesOn_ = [](Step const&) { return false; };
    EXPECT_EQ(iFileManager::copyStopped, copyFrom(listener.url()));
}

TEST_F(RemoteCopyTest, AnAnswerThatDoesNotBeginInTimeIsUnreadable) {
    HttpScript script = file("contents");
    script.stall = HttpScript::eStall::beforeHeaders;
    server_.on("/a", script);
    limits_.firstByte = soon;
    install();
    expectFailure(iFileManager::copyCannotAccess, "/a");
    EXPECT_TRUE(isLogged("/a", {"no answer within 60 ms"}));
}

TEST_F(RemoteCopyTest, HeadersThatDoNotEndInTimeAreNoAnswer) {
    HttpScript script = file("contents");
    script.stall = HttpScript::eStall::amidHeaders;
    server_.on("/a", script);
    limits_.firstByte = soon;
    install();
    expectFailure(iFileManager::copyCannotAccess, "/a");
}

TEST_F(RemoteCopyTest, HeadersThatNeverEndAreNoAnswer) {
    HttpScript script = file("contents");
    script.hasEndlessHeaders = true;
    server_.on("/a", script);
    expectFailure(iFileManager::copyCannotAccess, "/a");
    EXPECT_TRUE(isLogged("/a", {"headers don't end"}));
}

TEST_F(RemoteCopyTest, WhoSpeaksNoHttpGivesNoAnswer) {
    HttpScript script = file("contents\r\n");
    script.speaksHttp = false;
    server_.on("/a", script);
    expectFailure(iFileManager::copyCannotAccess, "/a");
    EXPECT_TRUE(isLogged("/a", {"speaks no HTTP"}));
}

TEST_F(RemoteCopyTest, ABodyThatStallsFails) {
    server_.on("/a", stalling());
    limits_.stall = soon;
    install();
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_TRUE(isLogged("/a", {"nothing came for 60 ms, after "}));
}

TEST_F(RemoteCopyTest, AFileThatTricklesInIsCopied) {
    HttpScript script = file("contents");
    script.isDripping = true;
    server_.on("/a", script);
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ("contents", folder_.read("to"));
}

TEST_F(RemoteCopyTest, FollowsRedirections) {
    server_.on("/a", redirectionTo("/b"));
    server_.on("/b", redirectionTo(server_.url("/c")));
    server_.on("/c", file("contents"));
    ASSERT_EQ(iFileManager::copied, copy("/a"));
    EXPECT_EQ("contents", folder_.read("to"));
}

TEST_F(RemoteCopyTest, FollowsFiveRedirectionsAndNoSixth) {
    for (int step = 0; step < 6; ++step) {
        server_.on("/" + std::to_string(step), redirectionTo("/" + std::to_string(step + 1)));
    }
    server_.on("/6", file("contents"));
    EXPECT_EQ(iFileManager::copied, copy("/1"));
    EXPECT_EQ(iFileManager::copyCannotAccess, copy("/0", true));
    EXPECT_TRUE(isLogged("/0", {"redirected more than 5 times", "redirections"}));
}

TEST_F(RemoteCopyTest, FollowsNoRedirectionToAFileOrAnotherScheme) {
    folder_.write("secret", "secret");
    for (std::string const& place : {"file://" + folder_.file("secret"), std::string("ftp://127.0.0.1/a"),
                                     std::string("gopher://127.0.0.1/a")}) {
        server_.on("/a", redirectionTo(place));
        expectFailure(iFileManager::copyCannotAccess, "/a");
    }
    EXPECT_TRUE(isLogged("/a", {"redirected", "check"}));
}

TEST_F(RemoteCopyTest, AFileThatHasAnotherLengthThanBeforeFails) {
    server_.on("HEAD", "/a", file("12345"));
    server_.on("GET", "/a", file("1234567"));
    ASSERT_EQ(5U, files().getFileSize(remote("/a")));
    expectFailure(iFileManager::copyFailed, "/a");
    EXPECT_TRUE(isLogged("/a", {"had 5 bytes and now has 7", "again"}));
}

TEST_F(RemoteCopyTest, AFileThatHasAnotherTagOrDateThanBeforeFails) {
    for (std::string const field : {"ETag: \"", "Last-Modified: Mon, 0"}) {
        HttpScript script = file("12345");
        script.headers = {field + "1\""};
        server_.on("HEAD", "/a", script);
        script.headers = {field + "2\""};
        server_.on("GET", "/a", script);
        ASSERT_EQ(5U, files().getFileSize(remote("/a")));
        expectFailure(iFileManager::copyFailed, "/a");
    }
    EXPECT_TRUE(isLogged("/a", {"has changed since its size was asked for"}));
}

TEST_F(RemoteCopyTest, AChangedFileIsCopiedWhenAskedForAgain) {
    server_.on("HEAD", "/a", file("12345"));
    server_.on("GET", "/a", file("1234567"));
    ASSERT_EQ(5U, files().getFileSize(remote("/a")));
    ASSERT_EQ(iFileManager::copyFailed, copy("/a"));
    EXPECT_EQ(iFileManager::copied, copy("/a"));
}

TEST_F(RemoteCopyTest, AsksWithTheCredentialsOfItsName) {
    server_.on("/a", file("contents"));
    ASSERT_EQ(iFileManager::copied, files().copyFile(wide(server_.url("/a", "me:secret")), folder_.name("to"),
                                                     false, nullptr, nullptr));
    EXPECT_EQ("Basic bWU6c2VjcmV0", server_.requests().front().headers["authorization"]);
}

TEST_F(RemoteCopyTest, CredentialsStandInNoLog) {
    EXPECT_EQ(iFileManager::copyCannotAccess, files().copyFile(wide(server_.url("/a?key=token", "me:secret")),
                                                               folder_.name("to"), false, nullptr, nullptr));
    EXPECT_EQ(1U, log_.count("was not copied"));
    EXPECT_EQ(0U, log_.count("secret"));
    EXPECT_EQ(0U, log_.count("token"));
}

TEST_F(RemoteCopyTest, CredentialsDoNotFollowARedirectionToAnotherStore) {
    HttpServer other;
    other.on("/b", file("contents"));
    server_.on("/a", redirectionTo(other.url("/b")));
    ASSERT_EQ(iFileManager::copied, files().copyFile(wide(server_.url("/a", "me:secret")), folder_.name("to"),
                                                     false, nullptr, nullptr));
    EXPECT_EQ(0U, other.requests().front().headers.count("authorization"));
}

TEST_F(RemoteCopyTest, CopiesNothingIntoAStore) {
    folder_.write("from", "contents");
    EXPECT_EQ(iFileManager::copyCannotAccess,
              files().copyFile(folder_.name("from"), remote("/a"), true, nullptr, nullptr));
    EXPECT_EQ(0U, server_.count());
}

TEST_F(RemoteCopyTest, ManyThreadsCopyAtOnce) {
    std::string const contents = pattern(mebibyte);
    server_.on("/a", file(contents));
    std::vector<std::thread> threads;
    for (int number = 0; number < 8; ++number) {
        threads.emplace_back([this, number] {
            static_cast<void>(files().copyFile(remote("/a"), folder_.name(std::to_string(number)), false,
                                               nullptr, nullptr));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int number = 0; number < 8; ++number) {
        EXPECT_TRUE(contents == folder_.read(std::to_string(number)));
    }
}

TEST_F(RemoteCopyTest, AServerThatHangsUpDoesNotKillTheProcess) {
    std::signal(SIGPIPE, SIG_DFL);
    HttpScript script = file("contents");
    script.dropAfter = 0;
    server_.on("/a", script);
    for (int attempt = 0; attempt < 20; ++attempt) {
        expectFailure(iFileManager::copyFailed, "/a");
    }
}

TEST_F(RemoteCopyTest, LeavesNoDescriptorsBehind) {
    HttpScript script = file("contents");
    script.dropAfter = 3;
    server_.on("/a", script);
    server_.on("/b", file("contents"));
    auto const openOnes = [] {
        auto const all = std::filesystem::directory_iterator("/proc/self/fd");
        return std::distance(begin(all), end(all));
    };
    auto const round = [this] {
        expectFailure(iFileManager::copyFailed, "/a");
        static_cast<void>(copy("/b"));
        std::filesystem::remove(folder_.file("to"));
        static_cast<void>(files().getFileSize(remote("/b")));
    };
    round();
    auto const before = openOnes();
    for (int number = 0; number < 20; ++number) {
        round();
    }
    EXPECT_LE(openOnes(), before + 2);
}

}  // namespace
}  // namespace test
