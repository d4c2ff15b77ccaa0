#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>

#include "ole/Ox/OxString.h"
#include "ole/os/OS.h"
#include "tests/fakes/CountingMemoryService.h"
#include "tests/fakes/ForwardingOS.h"
#include "tests/fakes/ForwardingThreadService.h"
#include "tests/support/Threads.h"

namespace test {
namespace {

TEST(MemoryService, GivesBlocksAlignedForEveryType) {
    for (std::size_t byteCount : {0U, 1U, 3U, 17U, 4096U}) {
        void* const block = memoryService().allocate(byteCount);
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % alignof(std::max_align_t));
        memoryService().release(block);
    }
}

TEST(MemoryService, GivesABlockOfItsOwnForNoBytes) {
    void* const first = memoryService().allocate(0);
    void* const second = memoryService().allocate(0);
    EXPECT_NE(nullptr, first);
    EXPECT_NE(first, second);
    memoryService().release(first);
    memoryService().release(second);
}

TEST(MemoryService, IgnoresNothingBeingReleased) {
    memoryService().release(nullptr);
    EXPECT_NE(nullptr, &memoryService());
}

TEST(MemoryService, ThrowsWhenThereIsNoMemory) {
#ifdef PLAYFILE_SANITIZED
    CountingMemoryService memory;  // the sanitizer ends a process that asks for so much
    memory.failAt(1);
#endif
    EXPECT_THROW(static_cast<void>(memoryService().allocate(SIZE_MAX / 2)), std::bad_alloc);
}

TEST(MemoryService, TheInstalledOneIsInForceAndTheOneBeforeComesBack) {
    iMemoryService const* const before = &memoryService();
    {
        CountingMemoryService counting;
        EXPECT_EQ(&counting, &memoryService());
        EXPECT_EQ(&counting, &OS()->getMemory());
    }
    EXPECT_EQ(before, &memoryService());
}

/// Hands everything on, and counts.
class OwnMemory final : public iMemoryService {
public:
    void* allocate(std::size_t byteCount) override {
        ++taken;
        return before_.allocate(byteCount);
    }
    void release(void* block) noexcept override { before_.release(block); }

    std::atomic<int> taken{0};

private:
    iMemoryService& before_ = memoryService();
};

TEST(InstallOS, TheLibraryTakesItsMemoryFromTheInstalledOne) {
    iMemoryService const* const before = &memoryService();
    OwnMemory own;
    {
        ForwardingOS system;
        system.memory = &own;
        installOS(&system);
        LightweightString<char> const text("text");
        EXPECT_EQ(own.taken, 1);
    }
    EXPECT_EQ(&memoryService(), before);
}

TEST(InstallOS, TheInstalledOneIsInForceAndTheOneBeforeComesBack) {
    iOS const* const before = OS();
    {
        ForwardingOS system;
        EXPECT_EQ(&system, OS());
    }
    EXPECT_EQ(before, OS());
}

TEST(InstallOS, ServicesCanBeReplacedOneByOne) {
    ForwardingThreadService threads;
    ForwardingOS system;
    system.threads = &threads;
    system.processorCount = 64;
    EXPECT_EQ(&threads, &OS()->getThreads());
    EXPECT_EQ(64U, OS()->getProcessorCount());
}

TEST(ErrorService, KeepsTheReasonThroughLaterSuccess) {
    ASSERT_FALSE(OS()->getFileManager().openFile(L"/missing", iFile::readAccess, 0, 1));
    ASSERT_TRUE(OS()->getFileManager().fileExists(L"/"));
    errno = 0;
    EXPECT_EQ(iErrorService::systemErrorBase + ENOENT, OS()->getErrors().getLastError());
    EXPECT_FALSE(OS()->getErrors().getLastErrorText().empty());
}

TEST(ErrorService, AThreadSeesOnlyItsOwnErrors) {
    ASSERT_FALSE(OS()->getFileManager().openFile(L"/missing", iFile::readAccess, 0, 1));
    OxResult elsewhere = oxSuccess;
    {
        Threads const other(1, [&] { elsewhere = OS()->getErrors().getLastError(); });
    }
    EXPECT_EQ(oxFailure, elsewhere);
}

TEST(ErrorService, NoErrorOfTheSystemLooksLikeSuccess) {
    ASSERT_FALSE(OS()->getFileManager().openFile(L"", iFile::readAccess, 0, 1));
    EXPECT_NE(oxSuccess, OS()->getErrors().getLastError());
}

}  // namespace
}  // namespace test
