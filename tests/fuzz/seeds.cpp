// Makes the first inputs: seeds <folder> writes one folder for each target.
#include "fuzz/Seeds.h"

#include "formats/game/MBmFont.h"
#include "imaging/codecs/Coding.h"

#include <cstdio>
#include <filesystem>
#include <map>

namespace {

std::filesystem::path root;

// For the target of a codec, and for that which tells codecs apart.
void AddPicture(const MCodec& codec, const Bytes& file) {
    const std::string_view bytes(reinterpret_cast<const char*>(file.data()), file.size());
    AddSeed("picture_" + std::string(codec.name), bytes);
    AddSeed("sniff", bytes);
}

void AddEncoded(const MCodec& codec) {
    for (MPixelFormat format = 1; codec.encode && format <= 9; ++format) {
        for (const auto& [width, height] : {std::pair(1U, 1U), std::pair(13U, 7U)}) {
            const Bytes file = Encoded(codec.name, RandomPicture(width, height, format, width));
            if (!file.empty()) AddPicture(codec, file);
        }
    }
}

// The files of the tests, which lie in folders with the names of the forms and in that of the refused ones.
void AddData(const MCodec& codec) {
    std::string folder(codec.name);
    std::ranges::transform(folder, folder.begin(), [](char letter) { return static_cast<char>(letter | 32); });
    for (const std::string& name : DataFiles(folder))
        AddPicture(codec, DataFile(folder + "/" + name));
    for (const std::string& name : DataFiles("refused")) {
        if (CodecForExtension(MString(name.c_str()).GetExtension()) == &codec)
            AddPicture(codec, DataFile("refused/" + name));
    }
}

// One small font in each form; its page is the picture beside the fuzzer's input.
void AddGameFonts() {
    MBmFont font;
    font.Info.Face = "f";
    font.Common = {.LineHeight = 16, .Base = 12, .ScaleW = 64, .ScaleH = 32, .Pages = 1};
    font.Pages = {{0, "f.png"}};
    font.Chars = {
        {.Id = 32, .XAdvance = 5},
        {.Id = 65, .X = 1, .Y = 2, .Width = 9, .Height = 12, .XOffset = -1, .YOffset = 1, .XAdvance = 10},
        {.Id = 8364, .X = 20, .Y = 3, .Width = 8, .Height = 7, .YOffset = 4, .XAdvance = 9}};
    font.Kernings = {{65, 8364, -3}};
    for (const MBmFormat& format : BmFormats())
        AddSeed("font_fnt", format.Write(font));
}

} // namespace

// x265 keeps some frames of each encoder that libheif closes.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libx265\n";
}

void AddSeed(std::string_view target, std::string_view bytes) {
    static std::map<std::string, int> counts;
    const std::string name = "fuzz_" + std::string(target);
    std::filesystem::create_directories(root / name);
    std::ofstream(root / name / std::to_string(counts[name]++), std::ios::binary) << bytes;
}

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: seeds FOLDER\n", stderr);
        return 2;
    }
    root = arguments[1];
    for (const MCodec& codec : Codecs()) {
        AddEncoded(codec);
        AddData(codec);
    }
    AddGameFonts();
    AddFontSeeds();
}
