// Loading and saving by path, whatever the form.
#include "TemporaryFolder.h"
#include "foundation/MFile.h"
#include "foundation/MMemory.h"
#include "imaging/Pictures.h"
#include "imaging/codecs/MCodec.h"

#include <gtest/gtest.h>

struct PictureFile : testing::Test {
    const TemporaryFolder folder;
};

TEST_F(PictureFile, PngHoldsFloatsAsSixteenBits) {
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

TEST_F(PictureFile, SavingInAnotherFormatGoesByCopyPixels) {
    OwnedPicture picture = RandomPicture(5, 4, FormatRGBA8, 15, 1.0);
    ASSERT_TRUE(picture.Save(folder.File("a.png"), FormatRGB8));
    const OwnedPicture opaque(MPicture(folder.File("a.png")));
    EXPECT_EQ(opaque.Format, FormatRGB8);
    EXPECT_EQ(opaque.GetPixel(4, 3).g, picture.GetPixel(4, 3).g);

    ASSERT_TRUE(picture.Save(folder.File("b.png"), FormatR16));
    const OwnedPicture grey(MPicture(folder.File("b.png")));
    EXPECT_TRUE(SamePicture(grey, BlankPicture(5, 4, FormatR16))) << "a pair that doesn't convert";

    OwnedPicture wide = RandomPicture(5, 4, FormatRGBA16, 15, 0.5);
    ASSERT_TRUE(wide.Save(folder.File("d.dds"), FormatRGB16));
    const OwnedPicture loaded(MPicture(folder.File("d.dds")));
    EXPECT_EQ(loaded.Format, FormatRGBA16);
    EXPECT_FALSE(loaded.HasTransparency()) << "of the format, this form takes just that there is no alpha";

    OwnedPicture turned = DeepCopy(picture);
    turned.FlipVertically();
    ASSERT_TRUE(turned.Save(folder.File("c.png")));
    EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File("c.png"))), picture));
}

TEST_F(PictureFile, SavingBleedsThePictureItself) {
    OwnedPicture picture = RandomPicture(40, 40, FormatRGBA8, 16, 0.1);
    OwnedPicture bled = DeepCopy(picture);
    bled.BleedColours();
    ASSERT_TRUE(picture.Save(folder.File("first.png")));
    EXPECT_TRUE(SamePicture(picture, bled));
    ASSERT_TRUE(picture.Save(folder.File("second.png")));
    EXPECT_EQ(folder.Read("first.png"), folder.Read("second.png"));
}

TEST_F(PictureFile, ReportTellsWhatWasWritten) {
    const MString path = folder.File("report.png");
    OwnedPicture picture = BlankPicture(30, 20, FormatRGB8);
    MString report("before");
    ASSERT_TRUE(picture.Save(path, FormatNone, &report));
    const MString size = SizeText(GetFileSize(path));
    EXPECT_TRUE(report.Equals("Path\t\t" + path + "\nSize\t\t" + size +
                              "\nResolution\t30 x 20\nFormat\t\tLDR 24 bpp RGB int\n"));
    EXPECT_FALSE(picture.Save(folder.File("report.webp"), FormatNone, &report));
    EXPECT_TRUE(report.IsEmpty());
}

TEST_F(PictureFile, WhatCanNotBeWrittenMakesNoFile) {
    OwnedPicture picture = BlankPicture(3, 3, FormatRGBA8);
    EXPECT_FALSE(picture.Save(MString()));
    for (const char* name : {"nowhere/a.png", "a.webp", "a.tga", "a", "a.pn"})
        EXPECT_FALSE(picture.Save(folder.File(name))) << name;
    EXPECT_FALSE(MPicture().Save(folder.File("invalid.png")));
    SetMemoryLimit(30000);
    EXPECT_FALSE(picture.Save(folder.File("memory.png")));
    SetMemoryLimit(0);
    EXPECT_TRUE(std::filesystem::is_empty(folder.path));
}

TEST_F(PictureFile, ContentDecidesNotTheName) {
    OwnedPicture picture = RandomPicture(4, 4, FormatRGBA8, 17);
    ASSERT_TRUE(picture.Save(folder.File("Real.png")));
    for (const char* copy : {"a.jpg", "noextension"})
        folder.Write(copy, folder.Read("Real.png"));
    for (const char* name : {"a.jpg", "noextension", "REAL.PNG"})
        EXPECT_TRUE(SamePicture(OwnedPicture(MPicture(folder.File(name))), picture)) << name;
}

TEST_F(PictureFile, FailedLoadsLeaveNothing) {
    OwnedPicture picture = RandomPicture(4, 4, FormatRGBA8, 18);
    ASSERT_TRUE(picture.Save(folder.File("a.png")));
    const std::string whole = folder.Read("a.png");
    folder.Write("cut.png", std::string_view(whole).substr(0, whole.size() - 20)); // fails with the last rows
    for (const MPicture& failed :
         {MPicture(folder.File("missing.png")), MPicture(folder.File("cut.png")), MPicture(folder.File("")),
          MPicture(MString()), MPicture(folder.Write("text.png", "text")), MPicture(folder.File("a.png"), 1),
          MPicture(folder.File("a.png"), -1)}) {
        EXPECT_EQ(std::pair(failed.Width, failed.Height), std::pair(0U, 0U));
        EXPECT_EQ(failed.Format, FormatNone);
        EXPECT_EQ(failed.Pixels, nullptr);
    }
}

TEST_F(PictureFile, ScaledLoadFitsTheBox) {
    OwnedPicture picture = BlankPicture(40, 30, FormatRGB8);
    picture.Fill(MColour(9, 8, 7));
    ASSERT_TRUE(picture.Save(folder.File("a.png")));
    const std::tuple<int, int, unsigned, unsigned> boxes[] = {
        {20, 20, 20, 15}, {13, 100, 13, 9}, {80, 80, 80, 60}, {0, 20, 40, 30}, {20, -1, 40, 30}};
    for (const auto& [maxWidth, maxHeight, width, height] : boxes) {
        const OwnedPicture loaded(MPicture(folder.File("a.png"), 0, maxWidth, maxHeight));
        EXPECT_EQ(std::pair(loaded.Width, loaded.Height), std::pair(width, height));
        EXPECT_EQ(loaded.GetPixel(3, 3), MColour(9, 8, 7));
    }
    ASSERT_TRUE(picture.Save(folder.File("a.dds")));
    EXPECT_EQ(OwnedPicture(MPicture(folder.File("a.dds"), 0, 20, 20)).Width, 40U) << "comes in its own size";
    OwnedPicture line = BlankPicture(100, 1, FormatRGB8);
    ASSERT_TRUE(line.Save(folder.File("line.png")));
    EXPECT_FALSE(MPicture(folder.File("line.png"), 0, 10, 10).IsValid()) << "its height would be 0";
}
