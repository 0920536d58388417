// The binary form: "BMF" and the version 3, then blocks of a type, a length and content, little-endian.

#include "formats/game/BmFontRecords.h"

#include <algorithm>

namespace {

constexpr std::string_view signature("BMF\3", 4);
enum Block : std::uint8_t { InfoBlock = 1, CommonBlock, PagesBlock, CharsBlock, KerningsBlock };
constexpr std::size_t infoSize = 14; // and the name with its 0
constexpr std::size_t commonSize = 15;
constexpr std::size_t charSize = 20;
constexpr std::size_t kerningSize = 10;

// The bits of the info record. Its maker's fields begin at the highest bit; readers that took them to begin at
// the lowest look for the same flags there, and without theirs take the font for one of Latin-1.
constexpr std::uint8_t smoothBit = 0x80;
constexpr std::uint8_t unicodeBit = 0x40;
constexpr std::uint8_t italicBit = 0x20;
constexpr std::uint8_t boldBit = 0x10;
constexpr std::uint8_t lowUnicodeBit = 0x02;
constexpr std::uint8_t lowItalicBit = 0x04;

class Bytes {
public:
    std::string text;

    void Add(int size, std::int32_t value) {
        for (int i = 0; i < size; ++i)
            text += static_cast<char>(static_cast<std::uint32_t>(value) >> (8 * i) & 0xFF);
    }
    void AddName(std::string_view name) {
        text += name;
        text += '\0';
    }
    void Begin(Block type) {
        Add(1, type);
        start = text.size();
        Add(4, 0);
    }
    void End() {
        const std::size_t length = text.size() - start - 4;
        for (std::size_t i = 0; i < 4; ++i)
            text[start + i] = static_cast<char>(length >> (8 * i) & 0xFF);
    }

private:
    std::size_t start = 0;
};

// Reads past the end as zeros; blocks are checked for their length before.
class Cursor {
public:
    std::string_view rest;

    std::uint32_t Unsigned(std::size_t size) {
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size && i < rest.size(); ++i)
            value |= std::uint32_t{static_cast<unsigned char>(rest[i])} << (8 * i);
        rest.remove_prefix(std::min(size, rest.size()));
        return value;
    }
    std::int32_t Word() { return static_cast<std::int32_t>(Unsigned(2)); }
    std::int32_t Byte() { return static_cast<std::int32_t>(Unsigned(1)); }
    std::int32_t Short() { return static_cast<std::int16_t>(Unsigned(2)); }
    // Ids are as wide as characters; -1 is the glyph for those that are missing.
    std::int32_t Long() { return static_cast<std::int32_t>(Unsigned(4)); }
    std::string_view Name() {
        const std::string_view name = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
        return name;
    }
};

void ReadInfo(Cursor content, MBmInfo& info) {
    info.Size = content.Short();
    const std::int32_t bits = content.Byte();
    info.Smooth = (bits & smoothBit) != 0 ? 1 : 0;
    info.Unicode = (bits & unicodeBit) != 0 ? 1 : 0;
    info.Italic = (bits & italicBit) != 0 ? 1 : 0;
    info.Bold = (bits & boldBit) != 0 ? 1 : 0;
    content.Byte(); // the character set of fonts that are not Unicode
    info.StretchH = content.Word();
    info.Aa = content.Byte();
    for (std::int32_t& side : info.Padding)
        side = content.Byte();
    for (std::int32_t& side : info.Spacing)
        side = content.Byte();
    info.Outline = content.Byte();
    info.Face = content.Name();
}

void ReadCommon(Cursor content, MBmCommon& common) {
    for (std::int32_t* const number :
         {&common.LineHeight, &common.Base, &common.ScaleW, &common.ScaleH, &common.Pages})
        *number = content.Word();
    common.Packed = content.Byte() & 1;
    for (std::int32_t* const channel :
         {&common.AlphaChnl, &common.RedChnl, &common.GreenChnl, &common.BlueChnl})
        *channel = content.Byte();
}

MBmChar ReadChar(Cursor& content) {
    MBmChar c;
    c.Id = content.Long();
    for (std::int32_t* const number : {&c.X, &c.Y, &c.Width, &c.Height})
        *number = content.Word();
    for (std::int32_t* const number : {&c.XOffset, &c.YOffset, &c.XAdvance})
        *number = content.Short();
    c.Page = content.Byte();
    c.Chnl = content.Byte() & 15;
    return c;
}

// Why a block of this type and length can't be; empty if it can.
std::string WhyNotBlock(std::uint32_t type, std::size_t length) {
    const auto wrong = [&](bool isWrong) {
        return isWrong
                   ? "its block " + std::to_string(type) + " can't be " + std::to_string(length) + " bytes long"
                   : std::string();
    };
    switch (type) {
    case InfoBlock: return wrong(length <= infoSize);
    case CommonBlock: return wrong(length != commonSize);
    case PagesBlock: return wrong(length == 0);
    case CharsBlock: return wrong(length % charSize != 0);
    case KerningsBlock: return wrong(length % kerningSize != 0);
    default: return "it holds a block of the unknown type " + std::to_string(type);
    }
}

void ReadBlock(std::uint32_t type, Cursor content, MBmFont& font) {
    switch (type) {
    case InfoBlock: return ReadInfo(content, font.Info);
    case CommonBlock: return ReadCommon(content, font.Common);
    case PagesBlock:
        // All names are of one length; tools that have it otherwise fill up with zeros.
        while (!content.rest.empty()) {
            const std::string_view name = content.Name();
            if (!name.empty())
                font.Pages.push_back({static_cast<std::int32_t>(font.Pages.size()), std::string(name)});
        }
        return;
    case CharsBlock:
        while (!content.rest.empty())
            font.Chars.push_back(ReadChar(content));
        return;
    default:
        while (!content.rest.empty()) {
            MBmKerning pair;
            pair.First = content.Long();
            pair.Second = content.Long();
            pair.Amount = content.Short();
            font.Kernings.push_back(pair);
        }
    }
}

} // namespace

std::string WhyNotBinary(const MBmFont& font) {
    const auto within = [](std::int32_t value, std::int32_t low, std::int32_t high) {
        return value >= low && value <= high;
    };
    const MBmCommon& common = font.Common;
    if (!within(font.Info.Size, 0, bmShort) || !within(common.LineHeight, 0, bmWord) ||
        !within(common.Base, 0, bmWord))
        return "the height of the lines, or the baseline in them, is more than the format holds";
    for (const MBmChar& c : font.Chars) {
        for (const auto& field : bmCharFields) {
            if (within(c.*field.Member, field.Low, field.High)) continue;
            return "the " + std::string(field.Name) + " of character " + std::to_string(c.Id) +
                   " is more than the format holds";
        }
    }
    for (const MBmKerning& pair : font.Kernings) {
        if (!within(pair.Amount, -bmShort - 1, bmShort))
            return "the kerning of " + std::to_string(pair.First) + " and " + std::to_string(pair.Second) +
                   " is more than the format holds";
    }
    return {};
}

std::string WriteBmBinary(const MBmFont& font) {
    Bytes out;
    out.text.reserve(256 + font.Chars.size() * charSize + font.Kernings.size() * kerningSize);
    out.text = signature;
    const MBmInfo& info = font.Info;
    out.Begin(InfoBlock);
    out.Add(2, info.Size);
    std::uint8_t bits = 0;
    if (info.Smooth) bits |= smoothBit;
    if (info.Unicode) bits |= unicodeBit | lowUnicodeBit;
    if (info.Italic) bits |= italicBit | lowItalicBit;
    if (info.Bold) bits |= boldBit;
    out.Add(1, bits);
    out.Add(1, 0);
    out.Add(2, info.StretchH);
    out.Add(1, info.Aa);
    for (const std::int32_t side : info.Padding)
        out.Add(1, side);
    for (const std::int32_t side : info.Spacing)
        out.Add(1, side);
    out.Add(1, info.Outline);
    out.AddName(info.Face);
    out.End();

    const MBmCommon& common = font.Common;
    out.Begin(CommonBlock);
    for (const std::int32_t number :
         {common.LineHeight, common.Base, common.ScaleW, common.ScaleH, common.Pages})
        out.Add(2, number);
    for (const std::int32_t number :
         {common.Packed, common.AlphaChnl, common.RedChnl, common.GreenChnl, common.BlueChnl})
        out.Add(1, number);
    out.End();

    out.Begin(PagesBlock);
    for (const MBmPage& page : font.Pages)
        out.AddName(page.File);
    out.End();

    out.Begin(CharsBlock);
    for (const MBmChar& c : font.Chars) {
        out.Add(4, c.Id);
        for (const std::int32_t number : {c.X, c.Y, c.Width, c.Height, c.XOffset, c.YOffset, c.XAdvance})
            out.Add(2, number);
        out.Add(1, c.Page);
        out.Add(1, c.Chnl);
    }
    out.End();

    if (font.Kernings.empty()) return std::move(out.text); // readers were seen that fail at an empty block
    out.Begin(KerningsBlock);
    for (const MBmKerning& pair : font.Kernings) {
        out.Add(4, pair.First);
        out.Add(4, pair.Second);
        out.Add(2, pair.Amount);
    }
    out.End();
    return std::move(out.text);
}

MBmResult ReadBmBinary(std::string_view bytes) {
    MBmResult result;
    const auto refuse = [&](std::string reason) {
        result.Reason = std::move(reason);
        return std::move(result);
    };
    if (!bytes.starts_with(signature)) return refuse("it is of another version than 3 of its binary form");
    bytes.remove_prefix(signature.size());
    bool hasCommon = false;
    while (!bytes.empty()) {
        Cursor head{bytes.substr(0, 5)};
        const std::uint32_t type = head.Unsigned(1);
        const std::size_t length = head.Unsigned(4);
        bytes.remove_prefix(std::min<std::size_t>(5, bytes.size()));
        if (length > bytes.size()) return refuse("its block " + std::to_string(type) + " is cut off");
        if (std::string reason = WhyNotBlock(type, length); !reason.empty()) return refuse(std::move(reason));
        ReadBlock(type, Cursor{bytes.substr(0, length)}, result.Font);
        hasCommon |= type == CommonBlock;
        bytes.remove_prefix(length);
    }
    if (!hasCommon) return refuse("it has no common block, which tells the height of its lines");
    if (std::string reason = WhyNotWhole(result.Font); !reason.empty()) return refuse(std::move(reason));
    const auto badId = std::ranges::find_if(result.Font.Chars, [](const MBmChar& c) {
        return c.Id < bmCharFields[0].Low || c.Id > bmCharFields[0].High;
    });
    if (badId != result.Font.Chars.end())
        return refuse(BmFieldReason("char", "id", std::to_string(static_cast<std::uint32_t>(badId->Id))));
    return result;
}
