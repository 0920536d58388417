#include "foundation/MVector.h"

#include "DebugLines.h"
#include "foundation/MString.h"

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace {

bool exhausted = false;

// Makes the array allocator fail and catches what is said of it.
struct ExhaustedMemory {
    DebugLines debug;
    ExhaustedMemory() { exhausted = true; }
    ~ExhaustedMemory() { exhausted = false; }
};

} // namespace

void* operator new[](std::size_t size) {
    if (exhausted) throw std::bad_alloc();
    return ::operator new(size);
}

void operator delete[](void* block) noexcept {
    ::operator delete(block);
}

void operator delete[](void* block, std::size_t) noexcept {
    ::operator delete(block);
}

namespace {

void FillUp(MVector<int>& vector, std::int32_t count) {
    ASSERT_TRUE(vector.Resize(count, false));
    for (std::int32_t i = 0; i < count; ++i)
        vector.data[i] = i;
}

TEST(Vector, KeepsWhatItIsTold) {
    MVector<int> vector;
    EXPECT_TRUE(vector.Resize(0, true));
    EXPECT_EQ(vector.data, nullptr);
    FillUp(vector, 5);
    EXPECT_TRUE(vector.Resize(5, false)); // an equal count changes nothing
    EXPECT_EQ(vector.data[4], 4);
    EXPECT_TRUE(vector.Resize(3, true));
    EXPECT_EQ(vector.data[2], 2);
    EXPECT_TRUE(vector.Resize(-1, true));
    EXPECT_EQ(vector.data, nullptr);

    MVector<MString> texts;
    ASSERT_TRUE(texts.Resize(2, false));
    texts.data[0] = "a";
    ASSERT_TRUE(texts.Resize(3, true));
    EXPECT_TRUE(texts.data[0].Equals(u"a"));
    EXPECT_EQ(texts.data[2].chars, nullptr);
    ASSERT_TRUE(texts.Resize(1, false));
    EXPECT_EQ(texts.data[0].chars, nullptr);
}

TEST(Vector, SurvivesExhaustedMemoryEmpty) {
    for (const bool keep : {true, false}) {
        MVector<int> vector;
        FillUp(vector, 5);
        const ExhaustedMemory memory;
        EXPECT_FALSE(vector.Resize(6, keep));
        EXPECT_EQ(vector.count, 0);
        EXPECT_EQ(vector.data, nullptr);
        EXPECT_EQ(memory.debug.lines, std::vector<std::u16string>{u"MVector: out of memory exception\n"});
    }
}

TEST(Vector, RefusesMoreThanTheMachineShouldGive) {
    SetMemoryLimit(1000);
    MVector<std::uint8_t> bytes;
    EXPECT_TRUE(bytes.Resize(1000, false));
    EXPECT_FALSE(bytes.Resize(1001, false));
    EXPECT_EQ(MGetMemory(1001), nullptr);
    SetMemoryLimit(0);
    struct Large {
        char bytes[1 << 20];
    };
    MVector<Large> absurd;
    EXPECT_FALSE(absurd.Resize(std::numeric_limits<std::int32_t>::max(), false));
    std::ifstream machine("/proc/meminfo");
    std::string name;
    double kilobytes = 0;
    ASSERT_TRUE(machine >> name >> kilobytes) << "the first line is the machine's memory";
    EXPECT_NEAR(static_cast<double>(MemoryLimit()), kilobytes * 1024 / 2, 1 << 20);
}

TEST(Memory, AllThatIsHeldCountsTogether) {
    SetMemoryLimit(std::size_t{64} << 20);
    constexpr std::size_t size = std::size_t{8} << 20;
    std::vector<std::unique_ptr<std::uint8_t[]>> blocks;
    while (std::unique_ptr<std::uint8_t[]> block{MGetMemory(size)}) {
        std::memset(block.get(), 1, size);
        blocks.push_back(std::move(block));
        ASSERT_LE(blocks.size(), 9U);
    }
    EXPECT_GE(blocks.size(), 6U);
    blocks.clear();
#if !defined(__SANITIZE_ADDRESS__) // which keeps what was freed
    EXPECT_TRUE(std::unique_ptr<std::uint8_t[]>(MGetMemory(size)));
#endif
    SetMemoryLimit(0);
}

TEST(Memory, SurvivesExhaustedMemoryAndNullPointers) {
    char block[] = "abc";
    MCopyMemory(nullptr, "xyz", 2);
    MCopyMemory(block, nullptr, 2);
    EXPECT_STREQ(block, "abc");
    const ExhaustedMemory memory;
    EXPECT_EQ(MGetMemory(0), nullptr);
    EXPECT_TRUE(memory.debug.lines.empty());
    EXPECT_EQ(MGetMemory(1), nullptr);
    EXPECT_EQ(memory.debug.lines, std::vector<std::u16string>{u"MGetMemory: out of memory exception\n"});
}

} // namespace
