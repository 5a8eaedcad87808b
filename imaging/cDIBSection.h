#pragma once

#include <QImage>
#include <cstdint>
#include <vector>

// The only raster operation the image engine uses: a plain copy.
inline constexpr std::uint32_t SRCCOPY = 0x00CC0020;

// The header that describes a device-independent bitmap.
struct BitmapInfoHeader {
    std::uint32_t biSize = 40;
    std::int32_t biWidth = 0;
    std::int32_t biHeight = 0;
    std::uint16_t biPlanes = 1;
    std::uint16_t biBitCount = 24;
    std::uint32_t biCompression = 0; // BI_RGB
    std::uint32_t biSizeImage = 0;
    std::int32_t biXPelsPerMeter = 0;
    std::int32_t biYPelsPerMeter = 0;
    std::uint32_t biClrUsed = 0;
    std::uint32_t biClrImportant = 0;
};

// One 24-bit true-colour pixel buffer: 3 bytes a pixel in the order blue, green, red, rows
// padded to a multiple of 4 bytes, row 0 being the bottom row of the picture. The palette
// quantiser and the GIF writer work on the bytes directly; always step rows by
// BytesPerScanLine(), never by 3 * width.
class cDIBSection {
public:
    cDIBSection() = default;
    ~cDIBSection() { ClearUp(); }
    cDIBSection(const cDIBSection&) = delete;
    cDIBSection& operator=(const cDIBSection&) = delete;

    // Makes a zero-filled buffer of the size; false (and an empty object) when it cannot.
    bool Create(int width, int height);
    // Releases the buffer; the width and height stay readable. Harmless when already empty.
    void ClearUp();

    int BytesPerScanLine() const { return (mHeader.biWidth * 3 + 3) & ~3; }
    int Width() const { return mHeader.biWidth; }
    int Height() const { return mHeader.biHeight; }
    const BitmapInfoHeader& Header() const { return mHeader; }
    // Non-zero while a buffer exists.
    std::uintptr_t hdib() const { return reinterpret_cast<std::uintptr_t>(mBits.data()); }
    std::uintptr_t hDC() const { return hdib(); }
    std::uint8_t* DIBSectionBitsPtr() { return mBits.empty() ? nullptr : mBits.data(); }
    const std::uint8_t* DIBSectionBitsPtr() const { return mBits.empty() ? nullptr : mBits.data(); }

    // Copies from `source` at (sourceLeft, sourceTop), in picture coordinates from the top-left,
    // to the top-left of this buffer. A negative size stands for this buffer's whole width or
    // height, 0 copies nothing. Parts outside either picture are left as they are.
    void LoadPictureBlt(const QImage& source, int sourceLeft = 0, int sourceTop = 0,
                        int sourceWidth = -1, int sourceHeight = -1,
                        std::uint32_t rasterOp = SRCCOPY);
    void LoadPictureBlt(const cDIBSection& source, int sourceLeft = 0, int sourceTop = 0,
                        int sourceWidth = -1, int sourceHeight = -1,
                        std::uint32_t rasterOp = SRCCOPY);
    // Copies this buffer from (sourceLeft, sourceTop) into `target` at (targetLeft, targetTop),
    // with the same rule for negative sizes.
    void PaintPicture(QImage& target, int targetLeft = 0, int targetTop = 0, int targetWidth = -1,
                      int targetHeight = -1, int sourceLeft = 0, int sourceTop = 0,
                      std::uint32_t rasterOp = SRCCOPY) const;
    void PaintPicture(cDIBSection& target, int targetLeft = 0, int targetTop = 0,
                      int targetWidth = -1, int targetHeight = -1, int sourceLeft = 0,
                      int sourceTop = 0, std::uint32_t rasterOp = SRCCOPY) const;

    // The buffer as a picture (Format_RGB888); a null image when there is no buffer.
    QImage toQImage() const;
    // Creates a buffer of the picture's size holding the picture; false when it cannot.
    bool fromQImage(const QImage& picture);

    // The address of picture pixel (x, y), y counted from the top.
    std::uint8_t* pixelAt(int x, int y) {
        return mBits.data() + std::size_t(mHeader.biHeight - 1 - y) * BytesPerScanLine() + x * 3;
    }
    const std::uint8_t* pixelAt(int x, int y) const {
        return mBits.data() + std::size_t(mHeader.biHeight - 1 - y) * BytesPerScanLine() + x * 3;
    }

private:
    BitmapInfoHeader mHeader;
    std::vector<std::uint8_t> mBits;
};
