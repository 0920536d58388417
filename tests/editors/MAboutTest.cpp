#include "editors/MAbout.h"

#include "EditorTest.h"
#include "foundation/Product.h"

namespace {

class About : public EditorTest {
protected:
    // Of the last painting, which this makes.
    static Desktop::Rect PaintedInk(MAbout& about) {
        about.Paint(AnyWindow());
        return InkOf(Headless::record.paintings.back(), [](const MColour& pixel) { return pixel.b != 255; });
    }
};

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

TEST_F(About, TextsStandAtTheRightOnWhite) {
    for (const float none : {0.0F, -1.0F})
        EXPECT_EQ(MAbout("", none).Client().right, 680);
    for (const float scale : {1.0F, 2.0F}) {
        MAbout about("", scale);
        about.Picture = "/none.png";
        const Desktop::Rect both = PaintedInk(about);
        EXPECT_EQ(Headless::record.paintings.back().width, about.Client().right);
        EXPECT_NEAR(both.right, 660 * scale, 4 * scale);
        EXPECT_GT(both.left, 200 * scale);
        EXPECT_GT(both.top, 75 * scale);
        EXPECT_LT(both.bottom, 350 * scale) << "above the button";
        about.Heading = MString();
        EXPECT_GT(PaintedInk(about).top, 120 * scale);
        about.Body = MString();
        EXPECT_LT(PaintedInk(about).right, 1) << "empty texts are left out";
    }
}

// A small one is enlarged only with the density of the screen.
TEST_F(About, ThePictureCoversTheGround) {
    const TemporaryFolder folder;
    for (const auto& [width, scale, covered] : {std::tuple(680U, 1.0F, Desktop::Rect{0, 0, 680, 420}),
                                                {1360U, 1.0F, {0, 0, 680, 420}},
                                                {1360U, 1.5F, {0, 0, 1020, 630}},
                                                {680U, 2.0F, {0, 0, 1360, 840}},
                                                {68U, 1.0F, {306, 189, 374, 231}}}) {
        MAbout about("", scale);
        about.Picture = WritePicture(folder, "ground.png", width, width * 21 / 34, MColour(0, 0, 0));
        about.Heading = about.Body = MString();
        EXPECT_EQ(PaintedInk(about), covered) << width << " at " << scale;
    }
}
