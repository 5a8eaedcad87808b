#include "ImagingTestUtil.h"
#include "imaging/cDIBSection.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/cPalette.h"
#include "platform/Failure.h"
#include "support/ScriptedResponder.h"

#include <gtest/gtest.h>
#include <tuple>

using imagingtest::RecordingSink;

namespace {

using Colours = std::vector<QRgb>;

// A picture of one row, a pixel of each colour.
QImage rowOf(const Colours& colours) {
    QImage picture(int(colours.size()), 1, QImage::Format_RGB32);
    for (std::size_t i = 0; i < colours.size(); ++i)
        picture.setPixel(int(i), 0, colours[i]);
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
        // The folds take the level-one nodes last listed first until three leaves remain.
        {{qRgb(0, 0, 0), qRgb(255, 255, 255), qRgb(100, 0, 0), qRgb(0, 255, 0)},
         3,
         2,
         {qRgb(50, 0, 0), qRgb(255, 255, 255), qRgb(0, 255, 0)}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(paletteOf(rowOf(c.pixels), c.maxColours, c.depth), c.expected)
            << c.pixels.size() << " colours, at most " << c.maxColours;
}

TEST(Palette, AFailedFoldAsksTheSaveAndNoEndsIt) {
    ScriptedResponder boxes; // the engine itself shows nothing
    const QImage twoColours = rowOf({qRgb(0, 0, 0), qRgb(255, 255, 255)});
    RecordingSink sink;
    sink.answers = {Vb::Yes};
    cDIBSectionSave save(sink);
    EXPECT_EQ(paletteOf(twoColours, 1, 1, &save).size(), 2u);
    using Question = std::pair<QString, int>;
    EXPECT_EQ(sink.questions, std::vector{Question("Error in reducing nodes", Vb::YesNo)});

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
    EXPECT_THROW(paletteOf(rowOf({qRgb(5, 5, 5), qRgb(200, 5, 5)}), 1, 9), Failure);
}

TEST(Palette, ClosestIndexTakesTheLowestOfEqualEntries) {
    cPalette palette;
    EXPECT_EQ(palette.ClosestIndex(1, 2, 3), 0);
    for (const int red : {0, 100, 101, 100})
        palette.Add(std::uint8_t(red), 0, 0);
    EXPECT_EQ(palette.ClosestIndex(50, 0, 0), 1); // as near to 0 as to 100
    EXPECT_EQ(palette.ClosestIndex(100, 9, 0), 2);
    EXPECT_EQ(palette.ClosestIndex(300, 0, 0), 3);
    EXPECT_THROW(palette.Red(0), Failure);
    EXPECT_THROW(palette.Blue(5), Failure);
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
    const QImage grey = rowOf({qRgb(100, 100, 100), qRgb(200, 200, 200)});
    const Mapping plain = apply(grey, blackWhite, false);
    EXPECT_EQ(plain.source, grey);
    EXPECT_EQ(plain.mapped, rowOf({qRgb(0, 0, 0), qRgb(255, 255, 255)}));

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

    // The first pixel of the buffer (bottom left) keeps its colour, later ones change; a
    // picture one pixel wide diffuses nothing.
    const QImage photo = imagingtest::photoLike(8, 6, 3), column = imagingtest::photoLike(1, 9);
    const Mapping m = apply(photo, blackWhite, true);
    EXPECT_EQ(m.source.pixel(0, 5), photo.pixel(0, 5));
    EXPECT_NE(m.source, photo);
    EXPECT_EQ(apply(column, blackWhite, true).source, column);
}

// The pixel buffer the quantiser works on.
TEST(DIBSection, RowsArePaddedAndEmptySizesFail) {
    cDIBSection dib;
    for (const auto& [width, bytes] : {std::pair{1, 4}, {2, 8}, {4, 12}, {5, 16}, {160, 480}}) {
        ASSERT_TRUE(dib.Create(width, 3));
        EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
        EXPECT_EQ(dib.Header().biSizeImage, std::uint32_t(bytes * 3));
    }
    EXPECT_FALSE(dib.Create(0, 10));
    EXPECT_FALSE(dib.Create(10, -1));
    EXPECT_EQ(dib.hdib(), 0u);
    ASSERT_TRUE(dib.Create(7, 5));
    dib.ClearUp();
    dib.ClearUp();
    EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
    EXPECT_EQ(dib.Width(), 7); // the size stays readable
}

TEST(DIBSection, BufferIsBlueGreenRedBottomRowFirst) {
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.fill(0);
    picture.setPixel(0, 0, qRgb(10, 20, 30)); // top left
    picture.setPixel(2, 1, qRgb(40, 50, 60)); // bottom right
    cDIBSection dib;
    ASSERT_TRUE(dib.fromQImage(picture));
    const std::uint8_t* bits = dib.DIBSectionBitsPtr();
    // Row 0 is the bottom row, and the top row starts 12 bytes in.
    EXPECT_EQ(std::vector<int>(bits + 6, bits + 15),
              (std::vector<int>{60, 50, 40, 0, 0, 0, 30, 20, 10}));
    EXPECT_EQ(dib.toQImage().convertToFormat(QImage::Format_RGB32), picture);
    // A size of 0 copies nothing; a negative size stands for the whole buffer.
    QImage target(3, 2, QImage::Format_RGB32);
    target.fill(qRgb(9, 9, 9));
    dib.PaintPicture(target, 0, 0, 0, -1);
    EXPECT_EQ(target.pixel(0, 0), qRgb(9, 9, 9));
    dib.PaintPicture(target, 1, 0, -1, -1, 0, 0, SRCCOPY);
    EXPECT_EQ(std::pair(target.pixel(0, 0), target.pixel(1, 0)),
              std::pair(qRgb(9, 9, 9), qRgb(10, 20, 30)));
    EXPECT_THROW(dib.LoadPictureBlt(picture, 0, 0, -1, -1, 0x00EE0086), Failure);

    // A copy from an offset of the source takes the width asked for, the rest of the height.
    QImage ramp(5, 5, QImage::Format_RGB32);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            ramp.setPixel(x, y, qRgb(x * 10, y * 10, 0));
    ASSERT_TRUE(dib.Create(3, 3));
    dib.LoadPictureBlt(ramp, 2, 1, 2, -1);
    const QImage out = dib.toQImage();
    EXPECT_EQ(std::tuple(out.pixel(0, 0), out.pixel(1, 2), out.pixel(2, 0)),
              std::tuple(qRgb(20, 10, 0), qRgb(30, 30, 0), qRgb(0, 0, 0)));
}
