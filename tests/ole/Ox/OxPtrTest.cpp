#include "ole/Ox/OxPtr.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <thread>
#include <vector>

#include "ole/Ox/OxObject.h"
#include "tests/fakes/CountingMemoryService.h"

namespace {

/// Counts its destructions.
class Counted : public virtual iObject {
public:
    explicit Counted(int& destroyed) : destroyed_(destroyed) {}
    ~Counted() override { ++destroyed_; }

private:
    int& destroyed_;
};

class Left : public virtual iObject {};
class Right : public virtual iObject {};
class Both : public Left, public Right {};

using CountedPtr = Ox::Ptr<Counted>;

std::array<void const*, 2> wordsOf(void const* pointer) {
    std::array<void const*, 2> words{};
    std::memcpy(words.data(), pointer, sizeof(words));
    return words;
}

static_assert(sizeof(Ox::Ptr<Both>) == 2 * sizeof(void*));
static_assert(sizeof(Ox::ExternalPtr<int>) == 2 * sizeof(void*));
static_assert(sizeof(Ox::RefCount) == 4);

TEST(OxPtr, IsTheAddressOfTheCountAndThenThatOfTheObject) {
    Ox::Ptr<Both> const pointer = Ox::makePtr<Both>();
    auto const words = wordsOf(&pointer);
    EXPECT_EQ(words[0], &pointer->refCount());
    EXPECT_EQ(words[1], pointer.get());
}

TEST(OxPtr, LooksAtNoCountWhenTheObjectWordIsNull) {
    std::array<std::uintptr_t, 2> const words{1, 0};
    Ox::Ptr<Both> pointer;
    std::memcpy(static_cast<void*>(&pointer), words.data(), sizeof(words));
    Ox::Ptr<Both> const copy(pointer);
    EXPECT_FALSE(pointer);
    EXPECT_EQ(copy.useCount(), 0U);
}

TEST(OxPtr, OfNullIsEmpty) {
    Ox::Ptr<Both> const pointer(static_cast<Both*>(nullptr));
    EXPECT_FALSE(pointer);
    EXPECT_TRUE(pointer == nullptr);
}

TEST(OxPtr, CopyingRaisesTheCount) {
    Ox::Ptr<Both> const pointer = Ox::makePtr<Both>();
    EXPECT_EQ(pointer.useCount(), 1U);
    Ox::Ptr<Both> const copy(pointer);
    EXPECT_EQ(pointer.useCount(), 2U);
    EXPECT_TRUE(copy == pointer);
}

TEST(OxPtr, MovingKeepsTheCountAndEmptiesTheSource) {
    Ox::Ptr<Both> source = Ox::makePtr<Both>();
    Ox::Ptr<Both> const target(std::move(source));
    EXPECT_EQ(target.useCount(), 1U);
    EXPECT_EQ(wordsOf(&source), (std::array<void const*, 2>{}));
}

TEST(OxPtr, MoveAssignmentReleasesWhatWasHeld) {
    int destroyed = 0;
    CountedPtr target = Ox::makePtr<Counted>(destroyed);
    CountedPtr source = Ox::makePtr<Counted>(destroyed);
    target = std::move(source);
    EXPECT_EQ(destroyed, 1);
    EXPECT_EQ(target.useCount(), 1U);
}

TEST(OxPtr, AssignmentToItselfKeepsTheObject) {
    int destroyed = 0;
    CountedPtr pointer = Ox::makePtr<Counted>(destroyed);
    CountedPtr const& same = pointer;
    pointer = same;
    EXPECT_EQ(pointer.useCount(), 1U);
    EXPECT_EQ(destroyed, 0);
}

TEST(OxPtr, DecRefClearsBothWords) {
    Ox::Ptr<Both> pointer = Ox::makePtr<Both>();
    Ox::Ptr<Both> const other(pointer);
    pointer.decRef();
    EXPECT_EQ(wordsOf(&pointer), (std::array<void const*, 2>{}));
    EXPECT_EQ(other.useCount(), 1U);
}

TEST(OxPtr, DecRefOfAnEmptyPointerDoesNothing) {
    Ox::Ptr<Both> pointer;
    pointer.decRef();
    EXPECT_FALSE(pointer);
}

TEST(OxPtr, LastReleaseDestroysTheObjectOnce) {
    int destroyed = 0;
    CountedPtr pointer = Ox::makePtr<Counted>(destroyed);
    CountedPtr other(pointer);
    pointer = nullptr;
    EXPECT_EQ(destroyed, 0);
    other = nullptr;
    EXPECT_EQ(destroyed, 1);
}

TEST(OxPtr, DestroysThroughTheVirtualDestructor) {
    int destroyed = 0;
    { Ox::Ptr<iObject> const pointer(new Counted(destroyed)); }
    EXPECT_EQ(destroyed, 1);
}

TEST(OxPtr, IsStillSetWhileTheObjectIsDestroyed) {
    struct SeesItsPointer : public Ox::InternalRefCount {
        ~SeesItsPointer() override { *wasSet = (*pointer).get() == this; }
        Ox::Ptr<SeesItsPointer>* pointer = nullptr;
        bool* wasSet = nullptr;
    };
    bool wasSet = false;
    auto pointer = Ox::makePtr<SeesItsPointer>();
    pointer->pointer = &pointer;
    pointer->wasSet = &wasSet;
    pointer.decRef();
    EXPECT_TRUE(wasSet);
    EXPECT_FALSE(pointer);
}

TEST(OxPtr, DiamondHasOneCount) {
    Ox::Ptr<Both> const whole = Ox::makePtr<Both>();
    Ox::Ptr<Left> const left(whole);
    Ox::Ptr<Right> const right(whole);
    Ox::Ptr<iObject> const root(right);
    EXPECT_EQ(whole.useCount(), 4U);
    EXPECT_EQ(wordsOf(&left)[0], wordsOf(&right)[0]);
    EXPECT_EQ(wordsOf(&root)[0], wordsOf(&whole)[0]);
}

TEST(OxPtr, DiamondIsDestroyedOnceThroughAnyOfItsBases) {
    struct CountedDiamond : public Left, public Right, public Counted {
        using Counted::Counted;
    };
    int destroyed = 0;
    Ox::Ptr<Right> last;
    {
        auto const whole = Ox::makePtr<CountedDiamond>(destroyed);
        last = whole;
    }
    EXPECT_EQ(destroyed, 0);
    last = nullptr;
    EXPECT_EQ(destroyed, 1);
}

TEST(OxPtr, MovingToABaseKeepsTheCount) {
    Ox::Ptr<Both> whole = Ox::makePtr<Both>();
    Ox::Ptr<Right> const right(std::move(whole));
    EXPECT_EQ(right.useCount(), 1U);
    EXPECT_FALSE(whole);
}

TEST(OxPtr, DynamicCastSharesTheCount) {
    Ox::Ptr<Left> const left(new Both);
    Ox::Ptr<Right> const right = Ox::dynamicPtrCast<Right>(left);
    ASSERT_TRUE(right);
    EXPECT_EQ(left.useCount(), 2U);
}

TEST(OxPtr, DynamicCastToAnotherTypeIsEmptyAndTakesNoShare) {
    Ox::Ptr<Left> const left = Ox::makePtr<Left>();
    EXPECT_FALSE(Ox::dynamicPtrCast<Right>(left));
    EXPECT_EQ(left.useCount(), 1U);
}

TEST(OxPtr, DynamicCastOfAnEmptyPointerIsEmpty) {
    EXPECT_FALSE(Ox::dynamicPtrCast<Right>(Ox::Ptr<Left>()));
}

TEST(OxPtr, CopyOfAnObjectStartsUnshared) {
    Ox::Ptr<Both> const pointer = Ox::makePtr<Both>();
    Ox::Ptr<Both> const copy = Ox::makePtr<Both>(*pointer);
    EXPECT_EQ(copy.useCount(), 1U);
    EXPECT_EQ(pointer.useCount(), 1U);
}

TEST(OxPtr, AssigningToAnObjectLeavesItsCount) {
    Ox::Ptr<Both> const target = Ox::makePtr<Both>();
    Ox::Ptr<Both> const second(target);
    Ox::Ptr<Both> const source = Ox::makePtr<Both>();
    *target = *source;
    EXPECT_EQ(target.useCount(), 2U);
    EXPECT_EQ(source.useCount(), 1U);
}

TEST(OxPtr, ExternalCountServesATypeWithoutOne) {
    Ox::ExternalPtr<int> const pointer(new int(7));
    Ox::ExternalPtr<int> const copy(pointer);
    EXPECT_EQ(copy.useCount(), 2U);
    EXPECT_EQ(*copy, 7);
    EXPECT_NE(wordsOf(&pointer)[0], pointer.get());
}

TEST(OxPtr, ExternalCountLastReleaseDestroysTheObject) {
    int destroyed = 0;
    Ox::ExternalPtr<Counted> pointer(new Counted(destroyed));
    Ox::ExternalPtr<Counted> copy(pointer);
    pointer.decRef();
    EXPECT_EQ(destroyed, 0);
    copy.decRef();
    EXPECT_EQ(destroyed, 1);
}

TEST(OxPtr, CountsExactlyAcrossThreads) {
    constexpr int threadCount = 8;
    constexpr int copyCount = 2000;
    int destroyed = 0;
    CountedPtr shared = Ox::makePtr<Counted>(destroyed);
    {
        std::vector<std::jthread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([mine = shared] {
                std::vector<CountedPtr> const copies(copyCount, mine);
                EXPECT_GE(mine.useCount(), static_cast<std::uint32_t>(copyCount));
            });
        }
    }
    EXPECT_EQ(shared.useCount(), 1U);
    shared.decRef();
    EXPECT_EQ(destroyed, 1);
}

TEST(OxPtr, LastReleaseOnAnotherThreadSeesAllThatWasWrittenBefore) {
    struct Notes : public Ox::InternalRefCount {
        explicit Notes(int& result) : sum(result) {}
        ~Notes() override { sum = values[0] + values[1]; }
        int& sum;
        std::array<int, 2> values{};
    };
    int sum = 0;
    auto notes = Ox::makePtr<Notes>(sum);
    std::jthread first([mine = notes] { mine->values[0] = 1; });
    std::jthread second([mine = notes] { mine->values[1] = 2; });
    notes = nullptr;
    first = {};
    second = {};
    EXPECT_EQ(sum, 3);
}

#if !defined(PLAYFILE_SANITIZED)

TEST(OxPtr, ExternalCountIsFourBytesOfItsOwn) {
    int* const object = new int(1);
    test::CountingMemoryService memory;
    {
        Ox::ExternalPtr<int> const pointer(object);
        EXPECT_EQ(memory.getAllocations(), 1);
        EXPECT_EQ(memory.getLastByteCount(), 4U);
        EXPECT_TRUE(memory.holds(wordsOf(&pointer)[0]));
    }
    EXPECT_EQ(memory.getReleases(), 2);
}

TEST(OxPtr, ExternalCountIsFreedBeforeTheObject) {
    struct SeesTheHeap {
        ~SeesTheHeap() { *isCountFreed = memory->getReleases() == 1; }
        test::CountingMemoryService* memory;
        bool* isCountFreed;
    };
    bool isCountFreed = false;
    test::CountingMemoryService memory;
    { Ox::ExternalPtr<SeesTheHeap> const pointer(new SeesTheHeap{&memory, &isCountFreed}); }
    EXPECT_TRUE(isCountFreed);
    EXPECT_EQ(memory.getLive(), 0);
}

#endif

}  // namespace
