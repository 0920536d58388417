// What the forms of a BMFont share below MBmFont.h: the names and bounds of its numbers, records that are read
// field by field, and text that is written number by number.
#pragma once

#include "formats/game/MBmFont.h"

#include <array>
#include <charconv>
#include <cstring>
#include <utility>

// One number of a record. What lies outside its bounds can't be held by the format's binary form, and no font
// that could be drawn has it.
template<typename Record>
struct BmField {
    std::string_view Name;
    std::int32_t Record::*Member;
    std::int32_t Low;
    std::int32_t High;
};

inline constexpr std::int32_t bmWord = 65535;
inline constexpr std::int32_t bmShort = 32767;

// In the order in which readers that look for no names expect them.
inline constexpr std::array bmCommonFields{
    BmField<MBmCommon>{"lineHeight", &MBmCommon::LineHeight, 0, bmWord},
    BmField<MBmCommon>{"base", &MBmCommon::Base, -bmShort - 1, bmWord},
    BmField<MBmCommon>{"scaleW", &MBmCommon::ScaleW, 0, bmWord},
    BmField<MBmCommon>{"scaleH", &MBmCommon::ScaleH, 0, bmWord},
    BmField<MBmCommon>{"pages", &MBmCommon::Pages, 0, bmWord},
    BmField<MBmCommon>{"packed", &MBmCommon::Packed, 0, 255},
    BmField<MBmCommon>{"alphaChnl", &MBmCommon::AlphaChnl, 0, 255},
    BmField<MBmCommon>{"redChnl", &MBmCommon::RedChnl, 0, 255},
    BmField<MBmCommon>{"greenChnl", &MBmCommon::GreenChnl, 0, 255},
    BmField<MBmCommon>{"blueChnl", &MBmCommon::BlueChnl, 0, 255},
};

// The id -1 is that of the glyph for characters that are missing.
inline constexpr std::array bmCharFields{
    BmField<MBmChar>{"id", &MBmChar::Id, -1, 0x10FFFF},
    BmField<MBmChar>{"x", &MBmChar::X, 0, bmWord},
    BmField<MBmChar>{"y", &MBmChar::Y, 0, bmWord},
    BmField<MBmChar>{"width", &MBmChar::Width, 0, bmWord},
    BmField<MBmChar>{"height", &MBmChar::Height, 0, bmWord},
    BmField<MBmChar>{"xoffset", &MBmChar::XOffset, -bmShort - 1, bmShort},
    BmField<MBmChar>{"yoffset", &MBmChar::YOffset, -bmShort - 1, bmShort},
    BmField<MBmChar>{"xadvance", &MBmChar::XAdvance, -bmShort - 1, bmShort},
    BmField<MBmChar>{"page", &MBmChar::Page, 0, 255},
    BmField<MBmChar>{"chnl", &MBmChar::Chnl, 0, 15},
};

inline constexpr std::array bmKerningFields{
    BmField<MBmKerning>{"first", &MBmKerning::First, -1, 0x10FFFF},
    BmField<MBmKerning>{"second", &MBmKerning::Second, -1, 0x10FFFF},
    BmField<MBmKerning>{"amount", &MBmKerning::Amount, -bmShort - 1, bmShort},
};

// The numbers of the info record before and behind its lists, as they stand in text.
inline constexpr std::array bmInfoFields{
    BmField<MBmInfo>{"unicode", &MBmInfo::Unicode, 0, 255},
    BmField<MBmInfo>{"stretchH", &MBmInfo::StretchH, 0, bmWord},
    BmField<MBmInfo>{"smooth", &MBmInfo::Smooth, 0, 255},
    BmField<MBmInfo>{"aa", &MBmInfo::Aa, 0, 255},
};

// Text that grows number by number, which is most of a font file.
class BmText {
public:
    explicit BmText(std::size_t expected) { text.reserve(expected); }

    BmText& operator<<(std::string_view part) {
        if (part.size() > piece.size()) {
            Flush();
            text += part;
            return *this;
        }
        MakeRoom(part.size());
        std::memcpy(piece.data() + used, part.data(), part.size());
        used += part.size();
        return *this;
    }
    BmText& operator<<(std::int32_t number) {
        constexpr std::size_t longest = 11;
        MakeRoom(longest);
        char* const at = piece.data() + used;
        used += static_cast<std::size_t>(std::to_chars(at, at + longest, number).ptr - at);
        return *this;
    }
    // The byte written last becomes another one.
    void ReplaceLast(char byte) { (used > 0 ? piece[used - 1] : text.back()) = byte; }

    std::string Take() {
        Flush();
        return std::move(text);
    }

private:
    std::string text;
    std::array<char, 4096> piece; // of its end, which is put there at once
    std::size_t used = 0;

    void Flush() { text.append(piece.data(), std::exchange(used, 0)); }
    void MakeRoom(std::size_t count) {
        if (piece.size() - used < count) Flush();
    }
};

// Writes each number of a record as `before`, name, `between`, number, `after`.
template<typename Record, std::size_t Count>
class BmFieldWriter {
public:
    BmFieldWriter(const std::array<BmField<Record>, Count>& list, std::string_view before,
                  std::string_view between, std::string_view behind)
        : fields(list), after(behind) {
        for (std::size_t i = 0; i < Count; ++i)
            (starts[i] += before).append(fields[i].Name) += between;
    }

    void Write(BmText& out, const Record& record) const {
        for (std::size_t i = 0; i < Count; ++i)
            out << starts[i] << record.*fields[i].Member << after;
    }

private:
    const std::array<BmField<Record>, Count>& fields;
    std::array<std::string, Count> starts;
    std::string after;
};

struct BmAttribute {
    std::string_view Name;
    std::string_view Value;
};

// Puts a font together from records as three of the forms have them: a tag and attributes in any order.
// Unknown tags and attributes are passed over.
class BmRecordReader {
public:
    MBmResult result;

    // False once there is a reason; nothing more is to be read then.
    bool Take(std::string_view tag, std::span<const BmAttribute> attributes);
    bool Refuse(std::string reason);
    // The font, if all that a font needs was there.
    MBmResult Finish();

private:
    bool hasCommon = false;
    std::optional<std::int32_t> charsTold;
    std::optional<std::int32_t> kerningsTold;

    void TakeInfo(std::span<const BmAttribute> attributes);
    bool TakePage(std::span<const BmAttribute> attributes);
    bool TakeCount(std::string_view tag, std::span<const BmAttribute> attributes);
    template<typename Record, std::size_t Count>
    bool TakeNumbers(std::string_view tag, std::span<const BmAttribute> attributes,
                     const std::array<BmField<Record>, Count>& fields, Record& record);
};

// A whole number, or one with a fraction, which is rounded and counted. Nothing for anything else.
std::optional<std::int32_t> ReadBmNumber(std::string_view text, std::int32_t& rounded);
// "its char has width=-5, which is out of range", with the record's id where it has one.
std::string BmFieldReason(std::string_view tag, std::string_view name, std::string_view value);
// The same checks for a font that was read otherwise: those of Finish.
std::string WhyNotWhole(const MBmFont& font);
