// Makes the first inputs for the picture decoders: seeds <folder> writes one folder for each form.
#include "imaging/codecs/Coding.h"

#include <cstdio>
#include <filesystem>

namespace {

class Corpus {
public:
    Corpus(const std::filesystem::path& root, std::string_view form) : folder(root / form) {
        std::filesystem::create_directories(folder);
    }
    void Add(const Bytes& bytes) {
        std::ofstream file(folder / std::to_string(count++), std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
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

void Put(Bytes& file, std::size_t offset, std::uint32_t value, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i)
        file[offset + i] = static_cast<std::uint8_t>(value >> (8 * i));
}

void AddEncoded(const MCodec& codec, Corpus& corpus) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        for (const auto& [width, height] : {std::pair(1U, 1U), std::pair(13U, 7U)}) {
            const Bytes file = Encoded(codec.name, RandomPicture(width, height, format, width));
            if (!file.empty()) corpus.Add(file);
        }
    }
}

// The files of the tests, which lie in folders with the names of the forms.
void AddData(const MCodec& codec, Corpus& corpus) {
    std::string folder(codec.name);
    std::ranges::transform(folder, folder.begin(), [](char letter) { return static_cast<char>(letter | 32); });
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(LETTRINO_TEST_DATA + folder, none))
        corpus.Add(DataFile(folder + "/" + entry.path().filename().string()));
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
    return "leak:x265_malloc\n";
}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: seeds FOLDER\n", stderr);
        return 2;
    }
    for (const MCodec& codec : Codecs()) {
        Corpus corpus(arguments[1], codec.name);
        if (codec.encode) AddEncoded(codec, corpus);
        AddData(codec, corpus);
        if (codec.name == "BMP") AddBmps(corpus);
        if (codec.name == "TGA") AddTgas(corpus);
        if (codec.name == "DDS") AddDdss(corpus);
    }
}
