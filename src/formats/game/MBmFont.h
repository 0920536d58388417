// The BMFont format, version 3, as data: the fields that its forms (text, XML, binary, and the JSON that some
// loaders take) share, and their reading and writing. Nothing of the program's own font is known here.
//
// Source: the format's description by its maker, "Bitmap Font Generator", Documentation, File format; for the
// JSON form the object that the parsers of the three others give.
//
// Names are bytes as they stand in the file. Lengths are pixels; y counts from the upper edge of the line.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

struct MBmInfo {
    std::string Face;
    std::int32_t Size = 0; // below 0 where it means the height of capitals; readers of ours take its amount
    std::int32_t Bold = 0;
    std::int32_t Italic = 0;
    std::int32_t Unicode = 1;
    std::int32_t StretchH = 100;
    std::int32_t Smooth = 1;
    std::int32_t Aa = 1;
    // Up, right, down, left; and across, down. Both tell how the page was made and change nothing in drawing.
    std::array<std::int32_t, 4> Padding{};
    std::array<std::int32_t, 2> Spacing{};
    std::int32_t Outline = 0;

    friend bool operator==(const MBmInfo&, const MBmInfo&) = default;
};

struct MBmCommon {
    std::int32_t LineHeight = 0; // from line to line
    std::int32_t Base = 0;       // from the upper edge of the line to the baseline
    std::int32_t ScaleW = 0;     // of every page
    std::int32_t ScaleH = 0;
    std::int32_t Pages = 0;
    std::int32_t Packed = 0; // 1: each channel of a page holds glyphs of its own
    // 0: the glyph, 1: its outline, 2: both, 3: nothing, 4: all ones. All 0 for pictures in colour.
    std::int32_t AlphaChnl = 0;
    std::int32_t RedChnl = 0;
    std::int32_t GreenChnl = 0;
    std::int32_t BlueChnl = 0;

    friend bool operator==(const MBmCommon&, const MBmCommon&) = default;
};

struct MBmPage {
    std::int32_t Id = 0;
    std::string File;

    friend bool operator==(const MBmPage&, const MBmPage&) = default;
};

// Drawn at (pen + XOffset, top of the line + YOffset); then the pen goes on by XAdvance.
struct MBmChar {
    std::int32_t Id = 0;
    std::int32_t X = 0;
    std::int32_t Y = 0;
    std::int32_t Width = 0;
    std::int32_t Height = 0;
    std::int32_t XOffset = 0;
    std::int32_t YOffset = 0;
    std::int32_t XAdvance = 0;
    std::int32_t Page = 0;
    std::int32_t Chnl = 15; // 1: blue, 2: green, 4: red, 8: alpha

    friend bool operator==(const MBmChar&, const MBmChar&) = default;
};

struct MBmKerning {
    std::int32_t First = 0;
    std::int32_t Second = 0;
    std::int32_t Amount = 0;

    friend bool operator==(const MBmKerning&, const MBmKerning&) = default;
};

struct MBmFont {
    MBmInfo Info;
    MBmCommon Common;
    std::vector<MBmPage> Pages;
    std::vector<MBmChar> Chars;
    std::vector<MBmKerning> Kernings;

    friend bool operator==(const MBmFont&, const MBmFont&) = default;
};

// What reading gives. With a reason there is no font: one line without its full stop, about "it", the file.
struct MBmResult {
    MBmFont Font;
    std::string Reason;
    std::int32_t Rounded = 0; // numbers that had a fraction
};

enum class MBmForm : std::uint8_t { Text, Xml, Binary, Json };

struct MBmFormat {
    MBmForm Form;
    std::string_view Name;      // the word for it: "text"
    std::string_view Extension; // of its files, in lower case without the dot
    std::string (*Write)(const MBmFont& font);
    MBmResult (*Read)(std::string_view bytes);
};

// In the order of MBmForm.
std::span<const MBmFormat, 4> BmFormats();
inline const MBmFormat& FormatOf(MBmForm form) {
    return BmFormats()[static_cast<std::size_t>(form)];
}
const MBmFormat* BmFormatNamed(std::string_view name); // null if there is none

// The form that a file's first bytes tell; nothing for what is no font of any form.
std::optional<MBmForm> SniffBmFont(std::string_view bytes);
// Of any form. Whatever the bytes are, it takes time and memory in proportion to their number.
MBmResult ReadBmFont(std::string_view bytes);

// Why a font doesn't fit the fields of the binary form, which are narrower than the program's; empty if it
// does.
std::string WhyNotBinary(const MBmFont& font);

// The forms. Writing takes names as they stand: only such as need no escapes (see MGameFontNames.h), and for
// the binary form only what WhyNotBinary lets through.
std::string WriteBmText(const MBmFont& font);
std::string WriteBmXml(const MBmFont& font);
std::string WriteBmBinary(const MBmFont& font);
std::string WriteBmJson(const MBmFont& font);
MBmResult ReadBmText(std::string_view bytes);
MBmResult ReadBmXml(std::string_view bytes);
MBmResult ReadBmBinary(std::string_view bytes);
MBmResult ReadBmJson(std::string_view bytes);
