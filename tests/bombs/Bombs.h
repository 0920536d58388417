// Hostile files of less than a megabyte, for every reader: pictures that unpack to gigabytes, records that
// repeat what is slow, documents that never end. They are made when they are needed and stand in no folder.
#pragma once

#include "platform_text/FontBuilder.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace bombs {

struct Bomb {
    std::string reader;
    std::string name;
    std::string file; // its name, and that of the picture beside it if there is one
    std::string bytes;
    // What lettrino-cli is asked to do in the folder of the files, as typed in a shell.
    std::string steps;
    std::vector<std::pair<std::string, std::string>> beside{}; // further files: name and bytes
    bool sharp = false;                                        // tried in every test run
};

inline constexpr std::size_t largestFile = 1 << 20;

std::vector<Bomb> PictureBombs();
std::vector<Bomb> FaceBombs();     // files with the faces of a font
std::vector<Bomb> ColourBombs();   // the same with glyphs in colour
std::vector<Bomb> DocumentBombs(); // texture fonts, scripts, Photofonts, names
std::vector<Bomb> GameBombs();     // game fonts of every form
std::vector<Bomb> AllBombs();
// Fonts that are harmless, of every kind, called Built Sans.
std::vector<std::string> SmallFaces();
// The same before they are built: a variable one, and one with a map of Macintosh characters.
std::vector<fonts::Font> OddFaces();

// What stands between them so often that the file is as large as it may be.
std::string Repeated(std::string_view start, std::string_view part, std::string_view end = {});
// Numbers with the least significant byte first.
std::string Little(std::initializer_list<std::pair<std::uint64_t, int>> fields);
// A number of the file with the most significant byte first.
std::size_t NumberAt(const std::string& bytes, std::size_t place, std::size_t size);
// A zlib stream of so many bytes, all alike.
std::string PackedRun(std::uint64_t count, char byte = 0);
// A PNG of one colour: 8 or 16 bits, grey (0) or with all channels (6). `padding` bytes that no reader needs
// make its file larger.
std::string FlatPng(std::uint32_t width, std::uint32_t height, int depth, int colourType, std::size_t total = 0,
                    bool interlaced = false);
std::string Gzip(const std::string& text);
// A Photofont of glyphs with boxes of this size, 222 if no more are asked for, and as many pictures of them as
// fit.
std::string Photofont(int width, int height, const std::string& png, int behind = 256);
// In one line, which ends.
std::string Base64(const std::string& bytes);
// A DDS file; `dxgi` is 0 for those without the later header.
std::string Dds(std::uint32_t width, std::uint32_t height, const char* fourCc, std::uint32_t dxgi,
                const std::string& data);
// A TIFF of one strip, or of one tile with such a side. Compression and photometric interpretation are numbers
// of TIFF 6.0.
std::string Tiff(std::uint32_t width, std::uint32_t height, std::uint32_t compression,
                 std::uint32_t photometric, std::uint32_t bits, std::uint32_t samples, const std::string& data,
                 std::size_t padding = 0, std::uint32_t tile = 0);
std::string PngChunk(const char* type, const std::string& bytes);
// What no decoder looks at and nothing makes smaller.
std::string Noise(std::size_t count);

} // namespace bombs
