/// The sanitizers have allocation functions of their own, so their builds have nothing to test here.
#if !defined(PLAYFILE_SANITIZED)

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <vector>

#include "ole/os/OS.h"
#include "tests/fakes/CountingMemoryService.h"

namespace {

constexpr std::size_t byteCount = 40;

/// Called through these, so that the compiler can't leave out a block that nobody uses.
void* (*const volatile plainNew)(std::size_t) = &::operator new;
void* (*const volatile arrayNew)(std::size_t) = &::operator new[];

/// Throws something that is no exception of the standard library.
class OddMemoryService final : public iMemoryService {
public:
    OddMemoryService() : before_(memoryService()) { installMemoryService(this); }
    ~OddMemoryService() { installMemoryService(&before_); }
    void* allocate(std::size_t) override { throw 42; }
    void release(void* block) noexcept override { before_.release(block); }

private:
    iMemoryService& before_;
};

TEST(Allocation, NewTakesItsBlockFromTheMemoryService) {
    test::CountingMemoryService memory;
    void* const block = plainNew(byteCount);
    EXPECT_EQ(memory.getAllocations(), 1);
    EXPECT_EQ(memory.getLastByteCount(), byteCount);
    EXPECT_TRUE(memory.holds(block));
    ::operator delete(block);
}

TEST(Allocation, DeleteGivesTheBlockBack) {
    test::CountingMemoryService memory;
    void* const block = plainNew(byteCount);
    ::operator delete(block);
    EXPECT_EQ(memory.getReleases(), 1);
    EXPECT_EQ(memory.getLastReleased(), block);
}

TEST(Allocation, ArrayFormsGoThroughThePlainOnes) {
    test::CountingMemoryService memory;
    void* const block = arrayNew(byteCount);
    EXPECT_EQ(memory.getAllocations(), 1);
    EXPECT_TRUE(memory.holds(block));
    ::operator delete[](block);
    EXPECT_EQ(memory.getReleases(), 1);
    EXPECT_EQ(memory.getLive(), 0);
}

TEST(Allocation, NothrowFormsTakeFromTheMemoryServiceToo) {
    test::CountingMemoryService memory;
    void* const plain = ::operator new(byteCount, std::nothrow);
    void* const array = ::operator new[](byteCount, std::nothrow);
    EXPECT_TRUE(memory.holds(plain));
    EXPECT_TRUE(memory.holds(array));
    ::operator delete(plain, std::nothrow);
    ::operator delete[](array, std::nothrow);
    EXPECT_EQ(memory.getLive(), 0);
}

TEST(Allocation, SizedDeletesGiveTheBlockBack) {
    test::CountingMemoryService memory;
    void* const plain = plainNew(byteCount);
    void* const array = arrayNew(byteCount);
    ::operator delete(plain, byteCount);
    ::operator delete[](array, byteCount);
    EXPECT_EQ(memory.getReleases(), 2);
    EXPECT_EQ(memory.getLive(), 0);
}

TEST(Allocation, NewThrowsWithoutMemory) {
    test::CountingMemoryService memory;
    memory.failAt(1);
    EXPECT_THROW(plainNew(byteCount), std::bad_alloc);
    memory.failAt(1);
    EXPECT_THROW(arrayNew(byteCount), std::bad_alloc);
}

TEST(Allocation, NothrowFormsAnswerNullWithoutMemory) {
    test::CountingMemoryService memory;
    memory.failAt(1);
    EXPECT_EQ(::operator new(byteCount, std::nothrow), nullptr);
    memory.failAt(1);
    EXPECT_EQ(::operator new[](byteCount, std::nothrow), nullptr);
}

TEST(Allocation, NothrowFormsAnswerNullWhateverIsThrown) {
    OddMemoryService const memory;
    EXPECT_EQ(::operator new(byteCount, std::nothrow), nullptr);
    EXPECT_EQ(::operator new[](byteCount, std::nothrow), nullptr);
}

TEST(Allocation, NewOfNothingIsABlockOfItsOwn) {
    void* const first = plainNew(0);
    void* const second = plainNew(0);
    EXPECT_NE(first, nullptr);
    EXPECT_NE(first, second);
    ::operator delete(first);
    ::operator delete(second);
}

TEST(Allocation, DeleteOfNullDoesNothing) {
    test::CountingMemoryService memory;
    ::operator delete(nullptr);
    ::operator delete[](nullptr);
    EXPECT_EQ(memory.getReleases(), 0);
}

TEST(Allocation, ObjectsOfTheHostComeFromTheOneHeap) {
    test::CountingMemoryService memory;
    ThreadEventPtr event = OS()->getThreads().makeEvent(false, false, 0);
    EXPECT_TRUE(memory.holds(dynamic_cast<void*>(event.get())));
    int const live = memory.getLive();
    event = nullptr;
    EXPECT_LT(memory.getLive(), live);
}

/// A plug-in that makes and grows vectors for others.
class GrownVector : public testing::Test {
protected:
    using Make = std::vector<int>* (*)();
    using Grow = void (*)(std::vector<int>&, std::size_t);

    void SetUp() override {
        library_ = dlopen(PLAYFILE_TEST_PLUGIN_DIR "/grown_vector.so", RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library_, nullptr) << dlerror();
        make = reinterpret_cast<Make>(dlsym(library_, "makeVector"));
        grow = reinterpret_cast<Grow>(dlsym(library_, "growVector"));
        ASSERT_NE(make, nullptr);
        ASSERT_NE(grow, nullptr);
    }
    ~GrownVector() override {
        if (library_) {
            dlclose(library_);
        }
    }

    Make make = nullptr;
    Grow grow = nullptr;

private:
    void* library_ = nullptr;
};

TEST_F(GrownVector, OfTheProgramGetsThePluginsMemoryFromTheOneHeap) {
    test::CountingMemoryService memory;
    {
        std::vector<int> numbers;
        grow(numbers, 1000);
        EXPECT_EQ(numbers.size(), 1000U);
        EXPECT_TRUE(memory.holds(numbers.data()));
    }
    EXPECT_EQ(memory.getLive(), 0);
}

TEST_F(GrownVector, OfThePluginMayBeFreedByTheProgram) {
    test::CountingMemoryService memory;
    {
        std::unique_ptr<std::vector<int>> const numbers(make());
        EXPECT_TRUE(memory.holds(numbers.get()));
        numbers->resize(1000);
        grow(*numbers, 5000);
        EXPECT_TRUE(memory.holds(numbers->data()));
    }
    EXPECT_EQ(memory.getLive(), 0);
}

}  // namespace

#endif
