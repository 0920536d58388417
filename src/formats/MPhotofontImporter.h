// Photofont files (.phf): XML whose glyphs are embedded pictures. This is no XML parser: tags and attributes
// are fixed texts sought in each line, so a tag and its attributes must stand on one line, and the parts come
// in a fixed order: the mapping of glyph ids to characters, the kerning, the glyphs, then the images that they
// refer to.
#pragma once

#include "document/MColourFont.h"
#include "document/MKerningTable.h"
#include "formats/MTextFile.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

struct MPhotofontMap {
    MString Id;
    std::int32_t Unicode = 0;
};

// All numbers but the code in pixels; y grows downwards from the top of the picture.
struct MPhotofontGlyph {
    std::int32_t Unicode = 0;
    MString ImageId;
    std::int32_t BoxX = 0;
    std::int32_t BoxY = 0;
    std::int32_t BoxWidth = 0;
    std::int32_t BoxHeight = 0;
    std::int32_t BaseX = 0;
    std::int32_t BaseY = 0;  // of the baseline in the picture
    std::int32_t DeltaX = 0; // to the next pen position
    std::int32_t DeltaY = 0;
};

class MPhotofontImporter {
public:
    Desktop::WindowHandle Owner; // of the progress window; not owned
    std::vector<MPhotofontMap> Mapping;
    std::vector<MPhotofontGlyph> Glyphs;
    std::int32_t MaxAscent = 0;
    std::int32_t MaxDescent = 0;

    explicit MPhotofontImporter(Desktop::WindowHandle owner);

    // Clears `target` and fills it with what can be read; the padding and spacing of the settings become 0.
    // Images pass through a file in the settings' temporary folder. False only without a file or a font.
    bool Import(const MString& path, MColourFont* target);
    // Of the first mapping with this id; 0 if there is none.
    std::int32_t FindUnicode(const MString& id) const;

private:
    enum class Section : std::uint8_t { None, Mapping, Kerning, Glyph, Image };

    MColourFont* font = nullptr;
    std::optional<MKerningTable> kerning;
    Section section = Section::None;
    std::unordered_map<std::u16string, std::size_t> mapped;     // id: its place in Mapping
    std::map<std::u16string, std::set<std::size_t>> imageUsers; // image id: the glyphs that name it
    bool glyphIsCurrent = false;  // the last glyph takes the attributes that follow
    std::int32_t spaceWidth = -1; // below 0: not noted
    std::optional<std::size_t> imageGlyph;
    bool inData = false;
    std::string base64;
    std::int32_t imagesDone = 0;
    std::uint64_t pixelsLeft = 0; // of the pictures that this import may read and make

    void ReadLine(const MString& line);
    bool TakeData(std::u16string_view line);
    bool ReadGlyphLine(const MString& line);
    void AddMapping(const MString& line);
    void AddPair(const MString& line);
    void StartGlyph(const MString& line);
    void SetImageId(std::size_t glyph, const MString& id);
    void SetMetrics();
    void StartImage(const MString& line);
    void ProcessImage(const MPhotofontGlyph& glyph);
    std::optional<MPicture> DecodeImage(const MPhotofontGlyph& glyph);
    void AddGlyph(const MPhotofontGlyph& glyph, const MPicture& picture);
    bool TakePixels(std::int64_t width, std::int64_t height);
};
