// The engines that fonts are exported for, one row each: what each of them reads, and what is written
// differently for it and why. The command line, the dialog, the check and the guide's table follow from it.
#pragma once

#include "formats/game/MBmFont.h"

#include <array>
#include <cstdint>
#include <initializer_list>
#include <span>
#include <string_view>

class MFormSet {
public:
    constexpr MFormSet(std::initializer_list<MBmForm> forms) {
        for (const MBmForm form : forms)
            bits |= Bit(form);
    }
    constexpr bool Has(MBmForm form) const { return (bits & Bit(form)) != 0; }

private:
    unsigned bits = 0;

    static constexpr unsigned Bit(MBmForm form) { return 1U << static_cast<unsigned>(form); }
};

struct MGameEngine {
    std::string_view Name;  // the word for it on the command line
    std::string_view Title; // as people call it
    MBmForm First;          // the form that it gets where none is asked for
    MFormSet Forms;         // those that it reads
    std::int32_t MostPages;
    // Draws everything (line height - base) rows too low, so the base is written as the line's height.
    bool BaseIsHeight = false;
    bool KerningIsByte = false; // keeps amounts of -128 to 127; others are written as the nearest of these
    bool IgnoresKerning = false;
    bool NegativeAdvanceFails = false; // takes one below 0 for the glyph's width
    bool XmlHasOnePage = false;
    std::string_view Note; // for the guide: what to know of it
};

// The first one stands for an engine that isn't told.
inline constexpr std::array gameEngines{
    MGameEngine{.Name = "any",
                .Title = "Any engine",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text, MBmForm::Xml, MBmForm::Binary, MBmForm::Json},
                .MostPages = 256,
                .Note = "By the format's description; some engines read one page alone"},
    MGameEngine{.Name = "pixi",
                .Title = "PixiJS",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text, MBmForm::Xml},
                .MostPages = 256,
                .BaseIsHeight = true,
                .Note =
                    "Draws text too low by what lies below the baseline, so the base is written as the line's "
                    "height"},
    MGameEngine{.Name = "phaser",
                .Title = "Phaser",
                .First = MBmForm::Xml,
                .Forms = {MBmForm::Xml},
                .MostPages = 1,
                .Note = "The page is named to the loader beside the font"},
    MGameEngine{.Name = "love",
                .Title = "LÖVE",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text},
                .MostPages = 256,
                .Note = "Finds its pages beside the font"},
    MGameEngine{.Name = "godot",
                .Title = "Godot",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text, MBmForm::Binary},
                .MostPages = 256,
                .NegativeAdvanceFails = true,
                .Note = "Godot 3 reads the text form alone; after a change of the page, import the font again"},
    MGameEngine{.Name = "libgdx",
                .Title = "libGDX",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text},
                .MostPages = 256,
                .KerningIsByte = true,
                .Note = "Keeps kerning as a signed byte"},
    MGameEngine{.Name = "raylib",
                .Title = "raylib",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text},
                .MostPages = 8,
                .IgnoresKerning = true,
                .Note = "Takes no notice of kerning"},
    MGameEngine{.Name = "jimp",
                .Title = "jimp",
                .First = MBmForm::Text,
                .Forms = {MBmForm::Text, MBmForm::Xml, MBmForm::Binary},
                .MostPages = 256,
                .XmlHasOnePage = true,
                .Note = "Draws on pictures in Node.js and in the browser"},
};

const MGameEngine* EngineNamed(std::string_view name); // null if there is none
// "any, pixi, phaser": for messages.
std::string EngineNames();
// The words for the forms that an engine reads: "text, binary".
std::string FormNames(const MGameEngine& engine);
// The guide's table of engines, as Markdown.
std::string EngineTable();
