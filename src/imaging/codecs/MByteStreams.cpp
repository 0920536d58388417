#include "imaging/codecs/MByteStreams.h"

#include <algorithm>
#include <utility>

MByteSource::MByteSource(MFile& opened)
    : file(&opened), size(static_cast<std::uint64_t>(std::max<std::int64_t>(opened.GetSize(), 0))) {}

bool MByteSource::Read(std::uint64_t offset, void* target, std::size_t count) {
    return offset <= size && count <= size - offset && ReadSome(offset, target, count) == count;
}

std::size_t MByteSource::ReadSome(std::uint64_t offset, void* target, std::size_t count) {
    if (offset >= size) return 0;
    count = static_cast<std::size_t>(std::min<std::uint64_t>(count, size - offset));
    if (all.data()) {
        MCopyMemory(target, all.data() + offset, count);
        return count;
    }
    if (!file || !file->Seek(static_cast<std::int64_t>(offset))) return 0;
    constexpr std::size_t piece = std::size_t{1} << 30;
    std::size_t done = 0;
    while (done < count) {
        const auto asked = static_cast<std::uint32_t>(std::min(piece, count - done));
        const std::uint32_t came = file->ReadSome(static_cast<std::uint8_t*>(target) + done, asked);
        done += came;
        if (came != asked) break;
    }
    return done;
}

std::span<const std::uint8_t> MByteSource::All() {
    if (all.data() || size == 0) return all;
    const auto count = static_cast<std::size_t>(size);
    block.reset(MGetMemory(count));
    if (block && Read(0, block.get(), count)) all = {block.get(), count};
    return all;
}

bool MByteSink::WriteAt(std::uint64_t offset, const void* bytes, std::size_t count) {
    if (failed) return false;
    constexpr std::uint8_t zeros[16] = {};
    while (end < offset) {
        if (!Write(zeros, static_cast<std::size_t>(std::min<std::uint64_t>(offset - end, sizeof zeros))))
            return false;
    }
    if (count == 0) return true;
    if (offset < blockStart) {
        const auto inFile = static_cast<std::size_t>(std::min<std::uint64_t>(count, blockStart - offset));
        if (!WriteToFile(offset, bytes, inFile)) return Fail();
        return WriteAt(offset + inFile, static_cast<const std::uint8_t*>(bytes) + inFile, count - inFile);
    }
    constexpr std::size_t piece = std::size_t{1} << 20;
    if (path && offset == end && count >= piece) {
        if (!Flush() || !WriteToFile(end, bytes, count)) return Fail();
        blockStart = end += count;
        return true;
    }
    const auto place = static_cast<std::size_t>(offset - blockStart);
    if (!Reserve(place + count)) return Fail();
    MCopyMemory(block.get() + place, bytes, count);
    end = std::max<std::uint64_t>(end, offset + count);
    return !path || end - blockStart < piece || Flush();
}

bool MByteSink::Finish() {
    if (failed || !path) return !failed;
    failed = !TakeFile().Place();
    return !failed;
}

MSafeFile MByteSink::TakeFile() {
    if (!failed) Flush();
    MSafeFile taken = file ? std::move(*file) : MSafeFile();
    file.reset();
    if (failed && taken.Ok()) return MSafeFile::Failed(*path, "there is not enough memory for it");
    return taken;
}

bool MByteSink::Reserve(std::size_t count) {
    if (count <= capacity) return true;
    constexpr std::size_t first = 65536;
    const std::size_t larger = std::max({first, capacity * 2, count});
    std::unique_ptr<std::uint8_t[]> fresh(MGetMemory(larger));
    if (!fresh) return false;
    MCopyMemory(fresh.get(), block.get(), static_cast<std::size_t>(end - blockStart));
    block = std::move(fresh);
    capacity = larger;
    return true;
}

bool MByteSink::Flush() {
    const auto count = static_cast<std::size_t>(end - blockStart);
    if (!file) file.emplace(*path, links);
    if (count != 0 && !WriteToFile(blockStart, block.get(), count)) return Fail();
    blockStart = end;
    return file->Ok() || Fail();
}

bool MByteSink::Fail() {
    failed = true;
    return false;
}

bool MByteSink::WriteToFile(std::uint64_t offset, const void* bytes, std::size_t count) {
    return file && file->WriteAt(offset, bytes, count);
}
