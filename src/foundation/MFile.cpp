#include "foundation/MFile.h"

#include "foundation/MFolders.h"

#include <chrono>
#include <thread>

bool FileShareMode = true;

namespace {

std::int64_t SizeOf(std::fstream& stream) {
    const auto here = stream.tellg();
    stream.seekg(0, std::ios::end);
    const std::int64_t size = stream.tellg();
    stream.clear();
    stream.seekg(here);
    return size;
}

} // namespace

MFile::MFile(const MString& name, bool forWriting, bool preload) : writing(forWriting) {
    // The file that stands under the name in another case is gone with the next line, and keeps its name.
    const MString path = writing && !name.IsEmpty() ? FromSystemPath(PlaceToWrite(name)) : name;
    if (writing) DeleteFile(path, false, false);
    constexpr int attempts = 10;
    for (int attempt = 0; attempt < attempts; ++attempt) {
        Open(path);
        if (handle.is_open() || FileShareMode) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    ok = handle.is_open() ? 1 : 0;
    if (ok && preload && !writing) Preload();
}

void MFile::Open(const MString& path) {
    if (path.IsEmpty()) return;
    if (writing) {
        // Also where the system would let this user write it all the same.
        if (IsReadOnly(path)) return;
        handle.rdbuf()->pubsetbuf(nullptr, 0);
        handle.open(PlaceToWrite(path), std::ios::binary | std::ios::out);
        return;
    }
    const auto existing = FindExisting(path);
    std::error_code error;
    // A folder can be opened like a file on some systems; only its reads would fail. A pipe would keep the
    // program waiting for whoever writes into it.
    if (!existing || !std::filesystem::is_regular_file(*existing, error)) return;
    handle.open(*existing, std::ios::binary | std::ios::in);
}

void MFile::Preload() {
    const std::int64_t fileSize = SizeOf(handle);
    if (fileSize < 0 || fileSize > std::numeric_limits<std::int32_t>::max()) return;
    if (!buffer.Resize(static_cast<std::int32_t>(fileSize), false)) return;
    if (fileSize > 0 && !Read(buffer.data, static_cast<std::uint32_t>(fileSize))) {
        buffer.Clear();
        Seek(0);
        return;
    }
    handle.close();
    inMemory = true;
    size = fileSize;
}

std::int64_t MFile::GetSize() {
    if (!ok) return 0;
    if (inMemory) return size;
    if (!writing) return SizeOf(handle);
    const auto here = handle.tellp();
    handle.seekp(0, std::ios::end);
    const std::int64_t end = handle.tellp();
    handle.seekp(here);
    return end;
}

bool MFile::Read(void* data, std::uint32_t count) {
    if (!ok || !data || count == 0) return false;
    if (inMemory && (position < 0 || position + count > buffer.count)) return false;
    return ReadSome(data, count) == count;
}

std::uint32_t MFile::ReadSome(void* data, std::uint32_t count) {
    if (!ok || !data || count == 0 || position < 0) return 0;
    if (inMemory) {
        const auto there = std::min<std::int64_t>(count, buffer.count - position);
        if (there <= 0) return 0;
        MCopyMemory(data, buffer.data + position, static_cast<std::size_t>(there));
        position += there;
        return static_cast<std::uint32_t>(there);
    }
    handle.read(static_cast<char*>(data), count);
    const auto came = static_cast<std::uint32_t>(handle.gcount());
    handle.clear(); // the end of the file is told by the count; a later Seek must work
    return came;
}

bool MFile::Seek(std::int64_t offset) {
    if (offset < 0) return false;
    if (inMemory) {
        if (offset >= buffer.count) return false;
        position = offset;
        return true;
    }
    if (writing) {
        handle.seekp(offset);
    } else {
        handle.seekg(offset);
    }
    return true;
}

bool MFile::Write(const void* data, std::uint64_t count) {
    // Only the low half counts for "nothing to write": a count of exactly 2^32 is refused like 0.
    if (!ok || !data || (count & 0xFFFFFFFFU) == 0) return false;
    handle.write(static_cast<const char*>(data), static_cast<std::streamsize>(count));
    const bool written = handle.good();
    handle.clear();
    return written;
}

std::int64_t GetFileSize(const MString& path) {
    return MFile(path, false, false).GetSize();
}
