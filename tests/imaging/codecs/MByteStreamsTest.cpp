#include "imaging/codecs/MByteStreams.h"

#include "TemporaryFolder.h"
#include "imaging/Pictures.h"

#include <gtest/gtest.h>

// The same random writes to a sink in memory, to a sink with a file, and to a plain vector.
TEST(ByteSink, FilesAndMemoryHoldTheSame) {
    const TemporaryFolder folder;
    Random random(25);
    MByteSink memory;
    MByteSink file(folder.File("sink"));
    std::vector<std::uint8_t> expected;
    for (int i = 0; i < 400; ++i) {
        std::vector<std::uint8_t> bytes(random() % (i % 50 == 0 ? 3'000'000 : 20'000) + 1);
        for (auto& byte : bytes)
            byte = static_cast<std::uint8_t>(random());
        const bool back = i % 7 == 3;
        const std::size_t offset = back ? random() % (expected.size() + 2) : expected.size();
        expected.resize(std::max(expected.size(), offset + bytes.size()));
        std::ranges::copy(bytes, expected.begin() + static_cast<std::ptrdiff_t>(offset));
        ASSERT_TRUE(memory.WriteAt(offset, bytes.data(), bytes.size()));
        ASSERT_TRUE(file.WriteAt(offset, bytes.data(), bytes.size()));
    }
    ASSERT_TRUE(memory.Finish());
    ASSERT_TRUE(file.Finish());
    EXPECT_TRUE(std::ranges::equal(memory.Bytes(), expected));
    const std::string written = folder.Read("sink");
    EXPECT_TRUE(written == std::string(expected.begin(), expected.end()));
}

TEST(ByteSink, MakesItsFileLate) {
    const TemporaryFolder folder;
    const std::vector<std::uint8_t> bytes(100'000);
    EXPECT_TRUE(MByteSink(folder.File("given up")).Write(bytes.data(), bytes.size()));
    EXPECT_FALSE(FileExists(folder.File("given up")));
    MByteSink nowhere(folder.File("nowhere/file"));
    EXPECT_TRUE(nowhere.Write(bytes.data(), 1));
    EXPECT_FALSE(nowhere.Finish());
}

TEST(ByteSink, StaysFailedWithoutMemory) {
    MByteSink sink;
    const std::vector<std::uint8_t> bytes(100'000);
    SetMemoryLimit(150'000);
    EXPECT_TRUE(sink.Write(bytes.data(), bytes.size()));
    EXPECT_FALSE(sink.Write(bytes.data(), bytes.size()));
    SetMemoryLimit(0);
    EXPECT_FALSE(sink.Write(bytes.data(), 1) || sink.Finish());
}

TEST(ByteSource, FilesAndMemoryReadTheSame) {
    const TemporaryFolder folder;
    std::vector<std::uint8_t> bytes(1000);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7);
    MFile file(folder.Write("source", {reinterpret_cast<const char*>(bytes.data()), bytes.size()}), false,
               false);
    MByteSource fromFile(file);
    MByteSource fromMemory{std::span<const std::uint8_t>(bytes)};
    for (MByteSource* source : {&fromFile, &fromMemory}) {
        std::uint8_t part[100];
        EXPECT_EQ(source->Size(), 1000U);
        EXPECT_TRUE(source->Read(900, part, 100));
        EXPECT_EQ(std::memcmp(part, bytes.data() + 900, 100), 0);
        EXPECT_FALSE(source->Read(901, part, 100));
        EXPECT_FALSE(source->Read(~std::uint64_t{0}, part, 100));
        EXPECT_EQ(source->ReadSome(990, part, 100), 10U);
        EXPECT_EQ(source->ReadSome(2000, part, 100), 0U);
        EXPECT_TRUE(std::ranges::equal(source->All(), bytes));
    }
}
