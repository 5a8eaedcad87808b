#include "imaging/cDIBSection.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

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
}

TEST(DIBSection, CopiesTakeNegativeSizesAsWholeAndZeroAsNothing) {
    QImage picture(5, 5, QImage::Format_RGB32);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            picture.setPixel(x, y, qRgb(x * 10, y * 10, 0));
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(3, 3));
    dib.LoadPictureBlt(picture, 0, 0, 0, 0);
    EXPECT_EQ(dib.toQImage().pixel(0, 0), qRgb(0, 0, 0));
    dib.LoadPictureBlt(picture, 2, 1, 2, -1);
    QImage out = dib.toQImage();
    EXPECT_EQ(out.pixel(0, 0), qRgb(20, 10, 0));
    EXPECT_EQ(out.pixel(1, 2), qRgb(30, 30, 0));
    EXPECT_EQ(out.pixel(2, 0), qRgb(0, 0, 0)); // outside the copied width

    QImage target(4, 3, QImage::Format_RGB32);
    target.fill(qRgb(9, 9, 9));
    dib.PaintPicture(target, 0, 0, 0, 5);
    EXPECT_EQ(target.pixel(0, 0), qRgb(9, 9, 9));
    dib.PaintPicture(target, 1, 0, -1, -1, 0, 0, SRCCOPY);
    EXPECT_EQ(target.pixel(1, 0), qRgb(20, 10, 0));
    EXPECT_EQ(target.pixel(0, 0), qRgb(9, 9, 9));
    EXPECT_THROW(dib.LoadPictureBlt(picture, 0, 0, -1, -1, 0x00EE0086), Failure);
}
