// Sheets of letters as drawn, painted or scanned ones look, whose every letter has a place that is known.
#pragma once

#include "document/MColourFont.h"
#include "document/MSettings.h"

#include <cstdint>
#include <string>
#include <vector>

struct SheetLook {
    enum class Effect : std::uint8_t { Plain, Outlined, Shadow };
    enum class Ground : std::uint8_t { Transparent, White, Paper };

    std::string family = "DejaVu Sans";
    std::int32_t weight = 400;
    bool italic = false;
    Effect effect = Effect::Plain;
    Ground ground = Ground::White;
    double degrees = 0; // clockwise
    std::int32_t height = 64;
    std::int32_t extraGap = 8; // beyond the face's own distances
    std::int32_t wander = 0; // pixels by which lines wave, and letters leave them and their places half as far
    std::vector<std::u16string> lines{u"ABCDEFGHIJKLMNOPQRSTUVWXYZ", u"abcdefghijklmnopqrstuvwxyz",
                                      u"0123456789", u".,:;!?'\"()[]-+=/&%@#"};
};

struct MadeLetter {
    char16_t character;
    std::uint32_t line;
    double x; // middle of its ink
    double y;
    double width; // of its ink before it was turned
    double height;
    double base; // the row under an "A" that stood here, at x
};

class MadeSheet {
public:
    explicit MadeSheet(const SheetLook& look);
    MadeSheet(const MadeSheet&) = delete;
    MadeSheet& operator=(const MadeSheet&) = delete;
    ~MadeSheet();

    MPicture picture; // format 7
    MPicture paper;   // the same without letters
    std::vector<MadeLetter> letters;
    MString text;       // with line breaks
    MSettings settings; // the program's while the sheet lives

private:
    MSettings* before;

public:
    MColourFont font; // the face rendered directly, without the effect
};
