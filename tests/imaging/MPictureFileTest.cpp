// Loading and saving by path, whatever the form.
#include "TemporaryFolder.h"
#include "foundation/MFile.h"
#include "foundation/MMemory.h"
#include "imaging/Pictures.h"
#include "imaging/codecs/MCodec.h"

#include <gtest/gtest.h>

TEST(PictureFile, PngHoldsFloatsAsSixteenBits) {
    const TemporaryFolder folder;
    for (const MPixelFormat format : {3, 6, 9}) {
        OwnedPicture picture = RandomPicture(7, 5, format, 14);
        ASSERT_TRUE(picture.Save(folder.File("picture.png")));
        const OwnedPicture loaded(MPicture(folder.File("picture.png")));
        ASSERT_EQ(loaded.Format, format - 1);
        for (const auto& [x, y] : PlacesOf(picture)) {
            MColour16 expected = picture.GetPixel16(x, y);
            if (format == 3) expected.a = 65535;
            EXPECT_EQ(loaded.GetPixel16(x, y), expected);
        }
    }
}

TEST(PictureFile, SavingInAnotherFormatGoesByCopyPixels) {
    const TemporaryFolder folder;
    OwnedPicture picture = RandomPicture(5, 4, FormatRGBA8, 15, 1.0);
    ASSERT_TRUE(picture.Save(folder.File("b.png"), FormatR16));
    const OwnedPicture grey(MPicture(folder.File("b.png")));
    EXPECT_TRUE(SamePicture(grey, BlankPicture(5, 4, FormatR16))) << "a pair that doesn't convert";

    OwnedPicture wide = RandomPicture(5, 4, FormatRGBA16, 15, 0.5);
    ASSERT_TRUE(wide.Save(folder.File("d.dds"), FormatRGB16));
    const OwnedPicture loaded(MPicture(folder.File("d.dds")));
    for (const auto& [x, y] : PlacesOf(loaded))
        EXPECT_EQ(loaded.GetPixel(x, y).a, 255);

    OwnedPicture turned = DeepCopy(picture);
    turned.FlipVertically();
    ASSERT_TRUE(turned.Save(folder.File("c.png")));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File("c.png"))), picture));
}

TEST(PictureFile, SavingBleedsThePictureItself) {
    const TemporaryFolder folder;
    OwnedPicture picture = RandomPicture(40, 40, FormatRGBA8, 16, 0.1);
    OwnedPicture bled = DeepCopy(picture);
    bled.BleedColours();
    ASSERT_TRUE(picture.Save(folder.File("bled.png")));
    EXPECT_TRUE(SamePicture(picture, bled));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File("bled.png"))), bled));
}

TEST(PictureFile, WhatCanNotBeWrittenMakesNoFile) {
    const TemporaryFolder folder;
    OwnedPicture picture = BlankPicture(3, 3, FormatRGBA8);
    EXPECT_FALSE(picture.Save(MString()));
    EXPECT_FALSE(picture.Save(folder.File("nowhere/a.png")));
    for (const char* name : {"a.webp", "a.tga", "a", "a.pn"})
        EXPECT_FALSE(picture.Save(folder.File(name))) << name;
    EXPECT_FALSE(MPicture().Save(folder.File("invalid.png")));
    SetMemoryLimit(30000);
    EXPECT_FALSE(picture.Save(folder.File("memory.png")));
    SetMemoryLimit(0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST(PictureFile, ContentDecidesNotTheName) {
    const TemporaryFolder folder;
    OwnedPicture picture = RandomPicture(4, 4, FormatRGBA8, 17);
    ASSERT_TRUE(picture.Save(folder.File("Real.png")));
    const auto bytes = folder.Read("Real.png");
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.Write("a.jpg", bytes))), picture));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.Write("noextension", bytes))), picture));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File("REAL.PNG"))), picture)) << "case is ignored";
}

TEST(PictureFile, FailedLoadsLeaveNothing) {
    const TemporaryFolder folder;
    OwnedPicture picture = RandomPicture(4, 4, FormatRGBA8, 18);
    ASSERT_TRUE(picture.Save(folder.File("a.png")));
    const std::string whole = folder.Read("a.png");
    folder.Write("cut.png", std::string_view(whole).substr(0, whole.size() - 20)); // fails with the last rows
    for (const MPicture& failed :
         {MPicture(folder.File("missing.png")), MPicture(folder.File("cut.png")), MPicture(folder.File("")),
          MPicture(MString()), MPicture(folder.Write("text.png", "text")), MPicture(folder.File("a.png"), 1),
          MPicture(folder.File("a.png"), -1)}) {
        EXPECT_EQ(failed.Pixels, nullptr);
        EXPECT_EQ(failed.Width + failed.Height, 0U);
    }
}
