// Makes the first inputs: seeds <folder> writes one folder for each target.
#include "fuzz/Seeds.h"

#include "formats/game/MBmFont.h"
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

    int count = 0;

private:
    std::filesystem::path folder;
};

void AddEncoded(const MCodec& codec, Corpus& corpus) {
    for (MPixelFormat format = 1; format <= 9; ++format) {
        for (const auto& [width, height] : {std::pair(1U, 1U), std::pair(13U, 7U)}) {
            const Bytes file = Encoded(codec.name, RandomPicture(width, height, format, width));
            if (!file.empty()) corpus.Add(file);
        }
    }
}

// The files of the tests, which lie in folders with the names of the forms and in that of the refused ones.
void AddData(const MCodec& codec, Corpus& corpus) {
    std::string folder(codec.name);
    std::ranges::transform(folder, folder.begin(), [](char letter) { return static_cast<char>(letter | 32); });
    for (const std::string& name : DataFiles(folder))
        corpus.Add(DataFile(folder + "/" + name));
    for (const std::string& name : DataFiles("refused")) {
        if (CodecForExtension(MString(name.c_str()).GetExtension()) == &codec)
            corpus.Add(DataFile("refused/" + name));
    }
}

// One small font in each form; its page is the picture beside the fuzzer's input.
void AddGameFonts(Corpus& corpus) {
    MBmFont font;
    font.Info.Face = "f";
    font.Common = {.LineHeight = 16, .Base = 12, .ScaleW = 64, .ScaleH = 32, .Pages = 1};
    font.Pages = {{0, "f.png"}};
    font.Chars = {
        {.Id = 32, .XAdvance = 5},
        {.Id = 65, .X = 1, .Y = 2, .Width = 9, .Height = 12, .XOffset = -1, .YOffset = 1, .XAdvance = 10},
        {.Id = 8364, .X = 20, .Y = 3, .Width = 8, .Height = 7, .YOffset = 4, .XAdvance = 9}};
    font.Kernings = {{65, 8364, -3}};
    for (const MBmFormat& format : BmFormats()) {
        const std::string bytes = format.Write(font);
        corpus.Add(Bytes(bytes.begin(), bytes.end()));
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
        Corpus corpus(arguments[1], "fuzz_picture_" + std::string(codec.name));
        Corpus all(arguments[1], "fuzz_sniff");
        all.count = static_cast<int>(&codec - Codecs().data()) * 1000;
        for (Corpus* const each : {&corpus, &all}) {
            if (codec.encode) AddEncoded(codec, *each);
            AddData(codec, *each);
        }
    }
    Corpus fonts(arguments[1], "fuzz_font_fnt");
    AddGameFonts(fonts);
    WriteFontSeeds(arguments[1]);
}
