#include "platform/text/MColourTable.h"

#include "platform_text/PaintBuilder.h"

#include <gtest/gtest.h>

namespace {

std::span<const std::uint8_t> View(const std::string& bytes) {
    return {reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
}

std::optional<MPaintTree> Read(const fonts::ColourTables& tables, std::uint16_t glyph) {
    const std::string colr = tables.Colr();
    const std::string cpal = tables.Cpal();
    return MColourTable(View(colr), View(cpal)).Read(glyph);
}

// The one paint below the root.
const MPaint& Top(const MPaintTree& tree) {
    return tree.paints.at(tree.paints.at(0).children.at(0));
}

const std::vector<std::array<int, 4>> palette{{255, 0, 0, 255}, {0, 51, 0, 128}};

fonts::ColourTables Single(const fonts::Bytes& paint) {
    fonts::ColourTables tables;
    tables.palette = palette;
    tables.glyphs[1] = paint;
    return tables;
}

} // namespace

TEST(ColourTable, AColourThatNoPaletteHasIsNotPainted) {
    fonts::ColourTables tables;
    tables.palette = palette;
    tables.flat = {{5, {{9, 99}}}};
    const auto tree = Read(tables, 5);
    ASSERT_TRUE(tree);
    EXPECT_EQ(tree->paints.back().colour.a, 0);
    EXPECT_FALSE(Read(tables, 4));
}

TEST(ColourTable, GraphsThatDoNotEndAreRefused) {
    using namespace fonts;
    // A glyph that shows itself, by way of another one.
    ColourTables tables = Single(ColrGlyph(2));
    tables.glyphs[2] = Transform(14, {}, {1, 1}, ColrGlyph(1));
    tables.glyphs[3] = Solid(0);
    EXPECT_FALSE(Read(tables, 1));
    EXPECT_FALSE(Read(tables, 2));
    EXPECT_TRUE(Read(tables, 3)) << "the others are not touched by it";

    // A layer that is its own list.
    tables = Single(Layers(0, 1));
    tables.layers = {Outline(1, Layers(0, 1))};
    EXPECT_FALSE(Read(tables, 1));

    for (const int depth : {60, 10'000}) {
        Bytes paint = Solid(0);
        for (int i = 0; i < depth; ++i)
            paint = Transform(14, {}, {1, 0}, paint);
        EXPECT_EQ(Read(Single(paint), 1).has_value(), depth == 60) << depth;
    }

    // Twenty lists that each name the next one sixteen times over: 16 to the 20th paints.
    tables = Single(Layers(0, 16));
    for (int list = 1; list <= 20; ++list)
        for (int i = 0; i < 16; ++i)
            tables.layers.push_back(list < 20 ? Layers(list * 16, 16) : Solid(0));
    EXPECT_FALSE(Read(tables, 1));
}

TEST(ColourTable, WhatTheTableDoesNotHoldIsRefused) {
    using namespace fonts;
    EXPECT_FALSE(Read(Single(Layers(0, 1)), 1)) << "no layers";
    for (const int format : {0, 33})
        EXPECT_FALSE(Read(Single(Bytes().U8(format)), 1)) << "no such format";
    EXPECT_FALSE(Read(Single(Composite(28, Solid(0), Solid(0))), 1)) << "no such mode";
    EXPECT_FALSE(Read(Single(Linear({0, 0, 1, 0, 0, 1}, ColourLine(0, {}))), 1)) << "no stops";
    EXPECT_FALSE(MColourTable({}, {}).valid);
    EXPECT_FALSE(MColourTable(View("\0\2\0\0\0\0\0\0\0\0\0\0\0\0"), {}).valid) << "version 2";
    const auto missing = Read(Single(ColrGlyph(77)), 1);
    ASSERT_TRUE(missing) << "a glyph without paints has nothing to show";
    EXPECT_TRUE(Top(*missing).children.empty());
}
