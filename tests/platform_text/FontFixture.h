// Fonts for tests: the installed ones by their files, and copies under another name.
#pragma once

#include "Text.h"
#include "platform/text/MSystemFonts.h"

#include <fontconfig/fontconfig.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

inline std::string FontPath(std::string_view name) {
    const std::string folder = name.starts_with("DejaVu") ? "dejavu/" : "liberation/";
    return "/usr/share/fonts/truetype/" + folder + std::string(name) + ".ttf";
}

inline std::string Widened(std::string_view text) {
    std::string wide;
    for (const char c : text) {
        wide.push_back('\0');
        wide.push_back(c);
    }
    return wide;
}

// A font file's bytes with one name in place of another of the same length.
inline std::string Renamed(const std::string& file, std::string_view from, std::string_view to) {
    std::ifstream in(file, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    return ReplaceAll(ReplaceAll(bytes, from, to), Widened(from), Widened(to));
}

// The number of `size` bytes, most significant first, that stands at `at`.
inline std::size_t Number(const std::string& bytes, std::size_t at, std::size_t size) {
    std::size_t value = 0;
    for (std::size_t i = 0; i < size; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

// Where a table of a font begins.
inline std::size_t TablePlace(const std::string& bytes, std::string_view tag) {
    return Number(bytes, bytes.find(tag) + 8, 4);
}

// A font of TrueType outlines with empty ones in place of some: each begins where the next one does.
inline std::string WithoutInk(std::string bytes, const std::vector<unsigned>& glyphs) {
    const std::size_t size = Number(bytes, TablePlace(bytes, "head") + 50, 2) == 0 ? 2 : 4;
    const std::size_t places = TablePlace(bytes, "loca");
    for (const unsigned glyph : glyphs)
        bytes.replace(places + glyph * size, size, bytes, places + (glyph + 1) * size, size);
    return bytes;
}

// Files that are fonts of this program for as long as the object lives.
class AddedFonts {
public:
    AddedFonts() {
        folder = std::filesystem::temp_directory_path() / ("lettrino-fonts-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder);
    }
    AddedFonts(const AddedFonts&) = delete;
    AddedFonts& operator=(const AddedFonts&) = delete;
    ~AddedFonts() {
        FcConfigAppFontClear(nullptr);
        std::filesystem::remove_all(folder);
    }

    MString Write(const std::string& name, const std::string& bytes) const {
        const std::filesystem::path path = folder / name;
        std::ofstream(path, std::ios::binary) << bytes;
        return FromSystem(path.string());
    }
    bool Add(const std::string& name, const std::string& bytes) const {
        return AddFontFile(Write(name, bytes));
    }

private:
    std::filesystem::path folder;
};
