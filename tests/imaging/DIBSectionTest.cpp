#include "imaging/cDIBSection.h"
#include "platform/Failure.h"

#include <gtest/gtest.h>

TEST(DIBSection, RowLengthIsPaddedToFourBytes) {
    cDIBSection dib;
    const std::pair<int, int> cases[] = {{1, 4}, {2, 8}, {3, 12}, {4, 12}, {5, 16}, {160, 480}};
    for (const auto& [width, bytes] : cases) {
        ASSERT_TRUE(dib.Create(width, 3));
        EXPECT_EQ(dib.BytesPerScanLine(), bytes) << width;
        EXPECT_EQ(dib.Header().biSizeImage, std::uint32_t(bytes * 3));
        EXPECT_EQ(dib.Header().biBitCount, 24);
        EXPECT_EQ(dib.Header().biHeight, 3);
    }
}

TEST(DIBSection, CreateFailsForEmptySizesAndClearUpIsRepeatable) {
    cDIBSection dib;
    EXPECT_FALSE(dib.Create(0, 10));
    EXPECT_FALSE(dib.Create(10, -1));
    EXPECT_EQ(dib.hdib(), 0u);
    dib.ClearUp();
    dib.ClearUp();
    ASSERT_TRUE(dib.Create(7, 5));
    EXPECT_NE(dib.hdib(), 0u);
    dib.ClearUp();
    EXPECT_EQ(dib.hdib(), 0u);
    EXPECT_EQ(dib.DIBSectionBitsPtr(), nullptr);
    // The size stays readable after ClearUp.
    EXPECT_EQ(dib.Width(), 7);
    EXPECT_EQ(dib.Height(), 5);
    dib.ClearUp();
}

TEST(DIBSection, BufferIsBlueGreenRedBottomRowFirst) {
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(10, 20, 30)); // top left
    picture.setPixel(2, 1, qRgb(40, 50, 60)); // bottom right
    cDIBSection dib;
    ASSERT_TRUE(dib.fromQImage(picture));
    const std::uint8_t* bits = dib.DIBSectionBitsPtr();
    // Row 0 of the buffer is the bottom row; its last pixel is at byte 6.
    EXPECT_EQ(bits[6], 60);
    EXPECT_EQ(bits[7], 50);
    EXPECT_EQ(bits[8], 40);
    // The top row is the second row of the buffer, 12 bytes in.
    EXPECT_EQ(bits[12], 30);
    EXPECT_EQ(bits[13], 20);
    EXPECT_EQ(bits[14], 10);
    EXPECT_EQ(dib.toQImage().convertToFormat(QImage::Format_RGB32), picture);
}

TEST(DIBSection, NegativeSizeCopiesAllAndZeroCopiesNothing) {
    QImage picture(4, 3, QImage::Format_RGB32);
    picture.fill(qRgb(1, 2, 3));
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(4, 3));
    dib.LoadPictureBlt(picture, 0, 0, 0, 0);
    EXPECT_EQ(dib.toQImage().pixel(0, 0), qRgb(0, 0, 0));
    dib.LoadPictureBlt(picture, 0, 0, -1, -1);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(dib.toQImage().pixel(x, y), qRgb(1, 2, 3));

    QImage target(4, 3, QImage::Format_RGB32);
    target.fill(qRgb(9, 9, 9));
    dib.PaintPicture(target, 0, 0, 0, 5);
    EXPECT_EQ(target.pixel(0, 0), qRgb(9, 9, 9));
    dib.PaintPicture(target, 0, 0, -1, -1, 0, 0, SRCCOPY);
    EXPECT_EQ(target.pixel(3, 2), qRgb(1, 2, 3));
}

TEST(DIBSection, CopiesARectangleFromAnOffset) {
    QImage picture(5, 5, QImage::Format_RGB32);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 5; ++x)
            picture.setPixel(x, y, qRgb(x * 10, y * 10, 0));
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(3, 3));
    dib.LoadPictureBlt(picture, 2, 1, 2, -1);
    const QImage out = dib.toQImage();
    EXPECT_EQ(out.pixel(0, 0), qRgb(20, 10, 0));
    EXPECT_EQ(out.pixel(1, 2), qRgb(30, 30, 0));
    EXPECT_EQ(out.pixel(2, 0), qRgb(0, 0, 0)); // outside the copied width

    cDIBSection other;
    ASSERT_TRUE(other.Create(3, 3));
    dib.PaintPicture(other, 1, 1, -1, -1);
    EXPECT_EQ(other.toQImage().pixel(1, 1), qRgb(20, 10, 0));
    EXPECT_EQ(other.toQImage().pixel(0, 0), qRgb(0, 0, 0));
}

TEST(DIBSection, OnlyPlainCopyIsARasterOperation) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(2, 2));
    QImage picture(2, 2, QImage::Format_RGB32);
    EXPECT_THROW(dib.LoadPictureBlt(picture, 0, 0, -1, -1, 0x00EE0086), Failure);
}
