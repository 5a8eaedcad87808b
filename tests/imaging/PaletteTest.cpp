#include "ImagingTestUtil.h"
#include "imaging/cDIBSection.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/cPalette.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"

#include <gtest/gtest.h>

using imagingtest::RecordingSink;

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

std::vector<QRgb> paletteOf(const QImage& picture, int maxColours, int depth,
                            cDIBSectionSave* status = nullptr) {
    cDIBSection dib;
    EXPECT_TRUE(dib.fromQImage(picture));
    cPalette palette;
    palette.CreateOptimal(dib, status, maxColours, depth);
    std::vector<QRgb> out;
    for (int i = 1; i <= palette.Count(); ++i)
        out.push_back(qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
    return out;
}

using Colours = std::vector<QRgb>;

} // namespace

TEST(Palette, KnownPalettes) {
    const Colours five = {qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(200, 30, 30), qRgb(30, 200, 30),
                          qRgb(30, 30, 200)};
    const struct {
        Colours pixels;
        int maxColours, depth;
        Colours expected;
    } cases[] = {
        {{qRgb(37, 201, 99)}, 16, 8, {qRgb(37, 201, 99)}},
        {five, 256, 8, five}, // fewer colours than the limit: one entry each, in slot order
        // 0 and 1 share a leaf at depth 8: the sum 1 over 2 pixels rounds to even, 0.
        {{qRgb(0, 0, 1), qRgb(0, 0, 0)}, 256, 8, {qRgb(0, 0, 0)}},
        // Folds forced by one colour: 5 over 2 gives 2, 7 over 2 gives 4.
        {{qRgb(2, 0, 0), qRgb(3, 0, 0)}, 1, 8, {qRgb(2, 0, 0)}},
        {{qRgb(0, 3, 0), qRgb(0, 4, 0)}, 1, 8, {qRgb(0, 4, 0)}},
        // 127 and 128 share the lower half of the first split; 129 lies in the upper half.
        {{qRgb(0, 0, 127), qRgb(0, 0, 128)}, 8, 1, {qRgb(0, 0, 128)}},
        {{qRgb(128, 0, 0), qRgb(129, 0, 0)}, 8, 1, {qRgb(128, 0, 0), qRgb(129, 0, 0)}},
        {{qRgb(0, 128, 0), qRgb(0, 129, 0)}, 8, 1, {qRgb(0, 128, 0), qRgb(0, 129, 0)}},
        // The folds take the level-one nodes last listed first until three leaves remain.
        {{qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(100, 0, 0), qRgb(0, 255, 0)},
         3,
         2,
         {qRgb(50, 0, 0), qRgb(255, 255, 255), qRgb(0, 255, 0)}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(paletteOf(pictureOf(c.pixels, int(c.pixels.size())), c.maxColours, c.depth),
                  c.expected)
            << c.pixels.size() << " colours, at most " << c.maxColours;
}

TEST(Palette, AFailedFoldAsksTheSaveAndNoEndsIt) {
    ScriptedResponder boxes; // the engine itself shows nothing
    const QImage twoColours = pictureOf({qRgb(0, 0, 0), qRgb(255, 255, 255)}, 2);
    RecordingSink sink;
    sink.answers = {Vb::Yes};
    cDIBSectionSave save(sink);
    EXPECT_EQ(paletteOf(twoColours, 1, 1, &save).size(), 2u);
    ASSERT_EQ(sink.questions.size(), 1u);
    EXPECT_EQ(sink.questions[0].text, QStringLiteral("Error in reducing nodes"));
    EXPECT_EQ(sink.questions[0].style, int(Vb::YesNo));

    sink.answers = {Vb::Yes, Vb::No};
    try {
        paletteOf(twoColours, 1, 1, &save);
        ADD_FAILURE() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), cPalette::kErrReducingNodes);
        EXPECT_EQ(failure.description(), QStringLiteral("Error in reducing nodes"));
    }
    // Without a save the quiet answer, Yes, goes on.
    EXPECT_EQ(paletteOf(twoColours, 1, 1).size(), 2u);
    EXPECT_TRUE(boxes.boxes.empty());
    // A depth above 8 has no list to fold from.
    EXPECT_THROW(paletteOf(pictureOf({qRgb(5, 5, 5), qRgb(200, 5, 5)}, 2), 1, 9), Failure);
}

TEST(Palette, ClosestIndexKnownAnswers) {
    cPalette palette;
    EXPECT_EQ(palette.ClosestIndex(1, 2, 3), 0);
    for (const auto& [r, g, b] :
         {std::tuple{0, 0, 0}, {255, 255, 255}, {100, 0, 0}, {101, 0, 0}, {100, 0, 0}})
        palette.Add(std::uint8_t(r), std::uint8_t(g), std::uint8_t(b));
    const struct {
        int r, g, b, index;
    } cases[] = {{50, 0, 0, 1},      {51, 0, 0, 3},      {100, 0, 0, 3}, {255, 0, 0, 4},
                 {200, 200, 200, 2}, {300, 300, 300, 2}, {0, 0, 0, 1}};
    for (const auto& c : cases)
        EXPECT_EQ(palette.ClosestIndex(c.r, c.g, c.b), c.index) << c.r << " " << c.g << " " << c.b;
    EXPECT_THROW(palette.Red(0), Failure);
    EXPECT_THROW(palette.Blue(6), Failure);
    palette.Clear();
    EXPECT_EQ(palette.ClosestIndex(1, 0, 0), 0);
}

namespace {
struct Mapping {
    QImage source, mapped;
};
Mapping apply(const QImage& picture, cPalette& palette, bool dither) {
    cDIBSection source, mapped;
    EXPECT_TRUE(source.fromQImage(picture));
    EXPECT_TRUE(mapped.Create(picture.width(), picture.height()));
    palette.ApplyPalette(source, mapped, nullptr, dither);
    return {source.toQImage().convertToFormat(QImage::Format_RGB32),
            mapped.toQImage().convertToFormat(QImage::Format_RGB32)};
}
} // namespace

TEST(Palette, DiffusionSendsSevenRightAndFourDownWithRedAndBlueCrossed) {
    cPalette blackWhite;
    blackWhite.Add(0, 0, 0);
    blackWhite.Add(255, 255, 255);
    // Without dithering the source stays; each pixel takes its nearest colour.
    const QImage grey = pictureOf({qRgb(100, 100, 100), qRgb(200, 200, 200)}, 2);
    const Mapping plain = apply(grey, blackWhite, false);
    EXPECT_EQ(plain.source, grey);
    EXPECT_EQ(plain.mapped, pictureOf({qRgb(0, 0, 0), qRgb(255, 255, 255)}, 2));

    // Width 3: the middle pixel of the bottom (first buffer) row sends nothing right, since
    // x = 3 is not below lastByte - 3, and its red error lands on the blue byte above it.
    QImage three(3, 2, QImage::Format_RGB32);
    three.fill(qRgb(0, 0, 0));
    three.setPixel(1, 1, qRgb(96, 0, 0));
    const Mapping narrow = apply(three, blackWhite, true);
    EXPECT_EQ(narrow.source.pixel(2, 1), qRgb(0, 0, 0));
    EXPECT_EQ(narrow.source.pixel(1, 0), qRgb(0, 0, 96 * 4 / 16));

    QImage five(5, 1, QImage::Format_RGB32);
    five.fill(qRgb(0, 0, 0));
    five.setPixel(1, 0, qRgb(96, 0, 32));
    EXPECT_EQ(apply(five, blackWhite, true).source.pixel(2, 0), qRgb(32 * 7 / 16, 0, 96 * 7 / 16));
}

TEST(Palette, DitheringAltersTheSourceFromTheSecondPixelAndMapsOntoThePalette) {
    for (const QImage& picture :
         {imagingtest::photoLike(40, 30, 3), imagingtest::photoLike(1, 50, 5)}) {
        cDIBSection dib;
        ASSERT_TRUE(dib.fromQImage(picture));
        cPalette palette;
        palette.CreateOptimal(dib, nullptr, 16, 8);
        std::vector<QRgb> entries;
        for (int i = 1; i <= palette.Count(); ++i)
            entries.push_back(qRgb(palette.Red(i), palette.Green(i), palette.Blue(i)));
        const Mapping m = apply(picture, palette, true);
        const int bottom = picture.height() - 1; // the first pixel of the buffer
        EXPECT_EQ(m.source.pixel(0, bottom), picture.pixel(0, bottom));
        // A picture one pixel wide diffuses nothing.
        EXPECT_EQ(m.source == picture, picture.width() == 1);
        for (int y = 0; y < picture.height(); ++y)
            for (int x = 0; x < picture.width(); ++x)
                ASSERT_NE(std::find(entries.begin(), entries.end(), m.mapped.pixel(x, y)),
                          entries.end());
    }
}
