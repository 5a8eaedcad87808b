#include "ImagingTestUtil.h"
#include "imaging/cDIBSection.h"
#include "imaging/cPalette.h"
#include "platform/Failure.h"
#include "support/ScriptedResponder.h"

#include <gtest/gtest.h>
#include <random>

namespace {

// A picture from a list of colours, one pixel each, left to right, top to bottom.
QImage pictureOf(const std::vector<QRgb>& colours, int width) {
    const int height = int((colours.size() + std::size_t(width) - 1) / std::size_t(width));
    QImage picture(width, height, QImage::Format_RGB32);
    picture.fill(colours.back());
    for (std::size_t i = 0; i < colours.size(); ++i)
        picture.setPixel(int(i) % width, int(i) / width, colours[i]);
    return picture;
}

std::vector<QRgb> paletteOf(const QImage& picture, int maxColours, int depth) {
    cDIBSection dib;
    EXPECT_TRUE(dib.fromQImage(picture));
    cPalette palette;
    palette.CreateOptimal(dib, nullptr, maxColours, depth);
    std::vector<QRgb> out;
    for (int i = 1; i <= palette.Count(); ++i)
        out.push_back(qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
    return out;
}

} // namespace

TEST(Palette, OneColourGivesOneExactEntry) {
    QImage picture(17, 9, QImage::Format_RGB32);
    picture.fill(qRgb(37, 201, 99));
    EXPECT_EQ(paletteOf(picture, 256, 8), std::vector<QRgb>{qRgb(37, 201, 99)});
    EXPECT_EQ(paletteOf(picture, 16, 8), std::vector<QRgb>{qRgb(37, 201, 99)});
}

TEST(Palette, FewerColoursThanTheLimitKeepOneEntryEach) {
    const std::vector<QRgb> colours = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(200, 30, 30),
                                       qRgb(30, 200, 30), qRgb(30, 30, 200)};
    std::vector<QRgb> many;
    for (int i = 0; i < 40; ++i)
        many.push_back(colours[std::size_t(i * 7) % colours.size()]);
    const auto palette = paletteOf(pictureOf(many, 8), 256, 8);
    EXPECT_EQ(palette.size(), colours.size());
    for (const QRgb c : colours)
        EXPECT_NE(std::find(palette.begin(), palette.end(), c), palette.end());
}

TEST(Palette, AveragesRoundHalfToEven) {
    // 0 and 1 share a leaf at depth 8: the sum 1 over 2 pixels gives 0.
    EXPECT_EQ(paletteOf(pictureOf({qRgb(0, 0, 1), qRgb(0, 0, 0)}, 2), 256, 8),
              std::vector<QRgb>{qRgb(0, 0, 0)});
    // One colour forces the folds: the sum 5 over 2 pixels gives 2.
    EXPECT_EQ(paletteOf(pictureOf({qRgb(2, 0, 0), qRgb(3, 0, 0)}, 2), 1, 8),
              std::vector<QRgb>{qRgb(2, 0, 0)});
    // 3 and 4 part at the last level; one colour forces the fold: 7 over 2 gives 4.
    EXPECT_EQ(paletteOf(pictureOf({qRgb(0, 3, 0), qRgb(0, 4, 0)}, 2), 1, 8),
              std::vector<QRgb>{qRgb(0, 4, 0)});
    // 127 and 128 share the lower half of the first split: 255 over 2 gives 128.
    EXPECT_EQ(paletteOf(pictureOf({qRgb(0, 0, 127), qRgb(0, 0, 128)}, 2), 8, 1),
              std::vector<QRgb>{qRgb(0, 0, 128)});
}

TEST(Palette, OneHundredTwentyEightAndOneHundredTwentyNineLieInDifferentHalves) {
    for (int channel = 0; channel < 3; ++channel) {
        auto colour = [channel](int v) {
            return qRgb(channel == 0 ? v : 0, channel == 1 ? v : 0, channel == 2 ? v : 0);
        };
        const auto palette = paletteOf(pictureOf({colour(128), colour(129)}, 2), 8, 1);
        EXPECT_EQ(palette.size(), 2u) << channel;
        const auto lower = paletteOf(pictureOf({colour(0), colour(128)}, 2), 8, 1);
        EXPECT_EQ(lower, std::vector<QRgb>{colour(64)}) << channel;
    }
}

TEST(Palette, EntriesFollowTheNodeSlotsAndFoldsTakeTheLastListedFirst) {
    // Two levels, three colours at most. The fourth pixel opens a fourth leaf; the folds then
    // take the level-one nodes last listed first until three leaves remain.
    const auto palette = paletteOf(
        pictureOf({qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(100, 0, 0), qRgb(0, 255, 0)}, 4), 3, 2);
    const std::vector<QRgb> expected = {qRgb(50, 0, 0), qRgb(255, 255, 255), qRgb(0, 255, 0)};
    EXPECT_EQ(palette, expected);
}

TEST(Palette, ReductionFailureAsksAndGoesOnWithYes) {
    ScriptedResponder responder;
    responder.boxAnswers = {Vb::Yes};
    const auto palette = paletteOf(pictureOf({qRgb(0, 0, 0), qRgb(255, 255, 255)}, 2), 1, 1);
    ASSERT_EQ(responder.boxes.size(), 1u);
    EXPECT_EQ(responder.boxes[0].text, QStringLiteral("Error in reducing nodes"));
    EXPECT_EQ(responder.boxes[0].style, int(Vb::YesNo));
    EXPECT_EQ(palette.size(), 2u);
}

TEST(PaletteDeathTest, ReductionFailureAnsweredNoEndsTheProcess) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            ScriptedResponder responder;
            responder.boxAnswers = {Vb::No};
            paletteOf(pictureOf({qRgb(0, 0, 0), qRgb(255, 255, 255)}, 2), 1, 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Palette, DepthAboveEightIsASubscriptFailure) {
    QImage picture(2, 1, QImage::Format_RGB32);
    picture.fill(qRgb(5, 5, 5));
    picture.setPixel(1, 0, qRgb(200, 5, 5));
    cDIBSection dib;
    ASSERT_TRUE(dib.fromQImage(picture));
    cPalette palette;
    try {
        palette.CreateOptimal(dib, nullptr, 1, 9); // the second colour needs a fold
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), FailureNumber::SubscriptOutOfRange);
    }
}

TEST(Palette, ClosestIndexPrefersTheLowestIndexAndAnswersZeroWhenEmpty) {
    cPalette palette;
    EXPECT_EQ(palette.ClosestIndex(1, 2, 3), 0);
    palette.Add(0, 0, 0);
    palette.Add(2, 0, 0);
    palette.Add(2, 0, 0);
    EXPECT_EQ(palette.Count(), 3);
    EXPECT_EQ(palette.ClosestIndex(1, 0, 0), 1);
    EXPECT_EQ(palette.ClosestIndex(2, 0, 0), 2);
    EXPECT_EQ(palette.ClosestIndex(255, 255, 255), 2);
    EXPECT_THROW(palette.Red(0), Failure);
    EXPECT_THROW(palette.Blue(4), Failure);
    palette.Clear();
    EXPECT_EQ(palette.Count(), 0);
    EXPECT_EQ(palette.ClosestIndex(1, 0, 0), 0);
}

TEST(Palette, ClosestIndexAgreesWithThePlainScan) {
    std::mt19937 random(7);
    for (int round = 0; round < 12; ++round) {
        cPalette palette;
        const int count = 1 + int(random() % 256);
        const bool clustered = round % 2 == 0;
        for (int i = 0; i < count; ++i) {
            // Clustered palettes have many equal distances; spread ones test far queries.
            const int spread = clustered ? 8 : 256;
            palette.Add(std::uint8_t(100 + random() % spread), std::uint8_t(random() % spread),
                        std::uint8_t(50 + random() % spread));
        }
        for (int q = 0; q < 20000; ++q) {
            const int r = int(random() % 256), g = int(random() % 256), b = int(random() % 256);
            ASSERT_EQ(palette.ClosestIndex(r, g, b), palette.ClosestIndexLinear(r, g, b))
                << round << " " << r << " " << g << " " << b;
        }
        EXPECT_EQ(palette.ClosestIndex(-5, 300, 7), palette.ClosestIndexLinear(-5, 300, 7));
    }
}

TEST(Palette, WithoutDitheringTheSourceStaysAsItWas) {
    const QImage picture = imagingtest::photoLike(33, 21);
    cDIBSection source, mapped;
    ASSERT_TRUE(source.fromQImage(picture));
    ASSERT_TRUE(mapped.Create(33, 21));
    cPalette palette;
    palette.CreateOptimal(source, nullptr, 16, 8);
    palette.ApplyPalette(source, mapped, nullptr, false);
    EXPECT_EQ(source.toQImage().convertToFormat(QImage::Format_RGB32), picture);
    const QImage out = mapped.toQImage();
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 33; ++x) {
            const QRgb c = out.pixel(x, y);
            const QRgb p = picture.pixel(x, y);
            const int i = palette.ClosestIndex(qRed(p), qGreen(p), qBlue(p));
            ASSERT_EQ(c, qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
        }
}

TEST(Palette, DitheringWritesIntoTheSourceFromTheSecondPixelOn) {
    const QImage picture = imagingtest::photoLike(40, 30, 3);
    cDIBSection source, mapped;
    ASSERT_TRUE(source.fromQImage(picture));
    ASSERT_TRUE(mapped.Create(40, 30));
    cPalette palette;
    palette.CreateOptimal(source, nullptr, 16, 8);
    std::vector<QRgb> entries;
    for (int i = 1; i <= palette.Count(); ++i)
        entries.push_back(qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
    palette.ApplyPalette(source, mapped, nullptr, true);
    const QImage diffused = source.toQImage().convertToFormat(QImage::Format_RGB32);
    // The first pixel of the buffer is the bottom-left one.
    EXPECT_EQ(diffused.pixel(0, 29), picture.pixel(0, 29));
    EXPECT_NE(diffused, picture);
    const QImage out = mapped.toQImage();
    for (int y = 0; y < 30; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_NE(std::find(entries.begin(), entries.end(), out.pixel(x, y)), entries.end());
}

TEST(Palette, DiffusionCrossesTheRedAndBlueErrors) {
    // Palette of black and white; a red-only pixel sends its red error to the blue byte of
    // its right neighbour, and to the blue byte of the pixel in the next buffer row.
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(qRgb(0, 0, 0));
    picture.setPixel(1, 1, qRgb(96, 0, 0)); // bottom row = first buffer row, middle pixel
    cDIBSection source, mapped;
    ASSERT_TRUE(source.fromQImage(picture));
    ASSERT_TRUE(mapped.Create(3, 2));
    cPalette palette;
    palette.Add(0, 0, 0);
    palette.Add(255, 255, 255);
    // Widen the row so the middle pixel has a right neighbour that receives: with width 3,
    // lastByte is 6 and x = 3 is not below lastByte - 3, so nothing goes right.
    palette.ApplyPalette(source, mapped, nullptr, true);
    QImage after = source.toQImage();
    EXPECT_EQ(after.pixel(2, 1), qRgb(0, 0, 0));
    EXPECT_EQ(after.pixel(1, 0), qRgb(0, 0, 96 * 4 / 16)); // next row, red error on blue

    QImage wide(5, 1, QImage::Format_RGB32);
    wide.fill(qRgb(0, 0, 0));
    wide.setPixel(1, 0, qRgb(96, 0, 32));
    cDIBSection wideSource, wideMapped;
    ASSERT_TRUE(wideSource.fromQImage(wide));
    ASSERT_TRUE(wideMapped.Create(5, 1));
    palette.ApplyPalette(wideSource, wideMapped, nullptr, true);
    EXPECT_EQ(wideSource.toQImage().pixel(2, 0), qRgb(32 * 7 / 16, 0, 96 * 7 / 16));
}

TEST(Palette, OnePixelWidePicturesDiffuseNothing) {
    const QImage picture = imagingtest::photoLike(1, 50, 5);
    cDIBSection source, mapped;
    ASSERT_TRUE(source.fromQImage(picture));
    ASSERT_TRUE(mapped.Create(1, 50));
    cPalette palette;
    palette.CreateOptimal(source, nullptr, 4, 8);
    palette.ApplyPalette(source, mapped, nullptr, true);
    EXPECT_EQ(source.toQImage().convertToFormat(QImage::Format_RGB32), picture);
}
