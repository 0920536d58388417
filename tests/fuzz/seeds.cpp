// Makes the first inputs for the picture decoders: seeds <folder> writes one folder for each form.
#include "imaging/codecs/MCodec.h"

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

class Corpus {
public:
    Corpus(const std::filesystem::path& root, std::string_view form) : folder(root / form) {
        std::filesystem::create_directories(folder);
    }
    void Add(std::span<const std::uint8_t> bytes) {
        std::ofstream file(folder / std::to_string(count++), std::ios::binary);
        for (const std::uint8_t byte : bytes)
            file.put(static_cast<char>(byte));
    }

private:
    std::filesystem::path folder;
    int count = 0;
};

Bytes Noise(std::size_t count) {
    std::mt19937 random(static_cast<std::uint32_t>(count));
    Bytes bytes(count);
    for (auto& byte : bytes)
        byte = static_cast<std::uint8_t>(random());
    return bytes;
}

MPicture Picture(std::uint32_t width, std::uint32_t height, MPixelFormat format) {
    MPicture picture(width, height, format);
    const Bytes noise = Noise(std::size_t{picture.Stride} * height);
    std::memcpy(picture.Pixels, noise.data(), noise.size());
    return picture;
}

void Put(Bytes& file, std::size_t offset, std::uint32_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        file[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void AddEncoded(const MCodec& codec, Corpus& corpus) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        for (const auto& [width, height] : {std::pair(1U, 1U), std::pair(13U, 7U)}) {
            MPicture picture = Picture(width, height, format);
            MByteSink sink;
            if (codec.encode(picture, sink) && sink.Finish()) corpus.Add(sink.Bytes());
            picture.Free();
        }
    }
}

// The forms that are ours, with fields that the encoders never write.
void AddBmps(Corpus& corpus) {
    for (const std::uint32_t bits : {1U, 4U, 8U, 16U, 24U, 32U}) {
        for (const std::uint32_t compression : {0U, 1U, 2U, 3U, 6U}) {
            Bytes file = Noise(400);
            std::memcpy(file.data(), "BM", 2);
            Put(file, 10, 14 + 40 + 100, 4);
            Put(file, 14, compression == 6 ? 56 : 40, 4);
            Put(file, 18, 7, 4);
            Put(file, 22, 5, 4);
            Put(file, 28, bits, 2);
            Put(file, 30, compression, 4);
            Put(file, 46, bits <= 8 ? 20 : 0, 4);
            corpus.Add(file);
        }
    }
}

void AddTgas(Corpus& corpus) {
    for (const std::uint32_t depth : {8U, 24U, 32U}) {
        Bytes file = Noise(18 + 60 + 200);
        Put(file, 1, depth == 8 ? 1 : 0, 1);
        Put(file, 2, depth == 8 ? 1 : 2, 1);
        Put(file, 5, 15, 2);
        Put(file, 7, 32, 1);
        Put(file, 12, 7, 2);
        Put(file, 14, 5, 2);
        Put(file, 16, depth, 1);
        corpus.Add(file);
    }
}

void AddDdss(Corpus& corpus) {
    for (const std::uint32_t format : {10U, 11U, 12U, 28U, 30U, 71U, 74U, 77U, 80U, 83U, 87U, 88U, 98U}) {
        Bytes file = Noise(148 + 400);
        std::fill_n(file.begin(), 148, std::uint8_t{0});
        std::memcpy(file.data(), "DDS ", 4);
        Put(file, 4, 124, 4);
        Put(file, 12, 5, 4);
        Put(file, 16, 7, 4);
        Put(file, 76, 32, 4);
        Put(file, 80, 4, 4);
        std::memcpy(file.data() + 84, "DX10", 4);
        Put(file, 128, format, 4);
        Put(file, 132, 3, 4);
        Put(file, 140, 1, 4);
        corpus.Add(file);
    }
}

} // namespace

// x265 keeps some frames of each encoder that libheif closes.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libx265\n";
}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: seeds FOLDER\n", stderr);
        return 2;
    }
    for (const MCodec& codec : Codecs()) {
        Corpus corpus(arguments[1], codec.name);
        if (codec.encode) AddEncoded(codec, corpus);
        if (codec.name == "BMP") AddBmps(corpus);
        if (codec.name == "TGA") AddTgas(corpus);
        if (codec.name == "DDS") AddDdss(corpus);
    }
}
