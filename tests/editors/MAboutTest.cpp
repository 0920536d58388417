#include "editors/MAbout.h"

#include "EditorTest.h"
#include "foundation/Product.h"

namespace {

using About = EditorTest;

// Around all that is not white.
Desktop::Rect InkOf(const Headless::Painting& painting) {
    Desktop::Rect ink{painting.width, painting.height, 0, 0};
    for (std::int32_t y = 0; y < painting.height; ++y) {
        for (std::int32_t x = 0; x < painting.width; ++x) {
            if (PixelAt(painting, x, y).b == 255) continue;
            ink = {std::min(ink.left, x), std::min(ink.top, y), std::max(ink.right, x + 1),
                   std::max(ink.bottom, y + 1)};
        }
    }
    return ink;
}

} // namespace

TEST_F(About, SaysWhoseProgramAndWhoseCopy) {
    const MAbout evaluation("", 1);
    EXPECT_EQ(Narrow(evaluation.Heading), Narrow(ProductName) + " " + LETTRINO_VERSION);
    const std::string body = Narrow(evaluation.Body);
    const std::string end =
        "\nnorthbank-softworks.example\n\n\nThis evaluation version may be\nfreely copied and distributed";
    ASSERT_TRUE(body.ends_with(end)) << body;
    EXPECT_EQ(std::ranges::count(body.substr(0, body.size() - end.size()), '\n'), 1) << "two lines of notice";
    EXPECT_TRUE(
        Narrow(MAbout("Ann Example", 1).Body).ends_with("\n\n\nThis copy is licensed to:\nAnn Example"));
}

TEST_F(About, SizesGrowWithTheScreensDensity) {
    const MAbout plain("", 1);
    EXPECT_EQ(plain.Client(), (Desktop::Rect{0, 0, 680, 420}));
    EXPECT_EQ(plain.OkButton(80, 25), (Desktop::Rect{560, 355, 640, 380}));
    const MAbout dense("", 1.5F);
    EXPECT_EQ(dense.Client(), (Desktop::Rect{0, 0, 1020, 630}));
    EXPECT_EQ(dense.OkButton(120, 38), (Desktop::Rect{840, 532, 960, 570}));
    for (const float scale : {0.0F, -1.0F})
        EXPECT_EQ(MAbout("", scale).Client().right, 680);
}

TEST_F(About, TextsStandAtTheRightOnWhite) {
    for (const float scale : {1.0F, 2.0F}) {
        MAbout about("", scale);
        about.Picture = "/none.png";
        Headless::Reset();
        about.Paint(AnyWindow());
        ASSERT_EQ(Headless::record.paintings.size(), 1U);
        EXPECT_EQ(Headless::record.paintings[0].width, about.Client().right);
        const Desktop::Rect both = InkOf(Headless::record.paintings[0]);
        EXPECT_NEAR(both.right, 660 * scale, 4 * scale);
        EXPECT_GT(both.left, 200 * scale);
        EXPECT_GT(both.top, 75 * scale);
        EXPECT_LT(both.bottom, 350 * scale) << "above the button";
        about.Heading = MString();
        about.Paint(AnyWindow());
        EXPECT_GT(InkOf(Headless::record.paintings[1]).top, 120 * scale);
        about.Body = MString();
        about.Paint(AnyWindow());
        EXPECT_LT(InkOf(Headless::record.paintings[2]).right, 1) << "empty texts are left out";
    }
}

// A small one is enlarged only with the density of the screen.
TEST_F(About, ThePictureCoversTheGround) {
    const TemporaryFolder folder;
    const struct {
        std::uint32_t width, height;
        float scale;
        Desktop::Rect covered;
    } cases[] = {{680, 420, 1, {0, 0, 680, 420}},
                 {1360, 840, 1, {0, 0, 680, 420}},
                 {1360, 840, 1.5F, {0, 0, 1020, 630}},
                 {680, 420, 2, {0, 0, 1360, 840}},
                 {68, 42, 1, {306, 189, 374, 231}}};
    for (const auto& c : cases) {
        MAbout about("", c.scale);
        about.Picture = WritePicture(folder, "ground.png", c.width, c.height, MColour(0, 0, 0));
        about.Heading = about.Body = MString();
        Headless::Reset();
        about.Paint(AnyWindow());
        EXPECT_EQ(InkOf(Headless::record.paintings[0]), c.covered) << c.width << " at " << c.scale;
    }
}
