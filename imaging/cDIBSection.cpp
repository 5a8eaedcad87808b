#include "imaging/cDIBSection.h"

#include "platform/Failure.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace {

// The rectangle of a copy after clipping it to both pictures.
struct Span {
    int sourceLeft, sourceTop, targetLeft, targetTop, width, height;
};

Span clipCopy(int sourceLeft, int sourceTop, int sourceW, int sourceH, int targetLeft,
              int targetTop, int targetW, int targetH, int width, int height) {
    if (sourceLeft < 0) {
        width += sourceLeft;
        targetLeft -= sourceLeft;
        sourceLeft = 0;
    }
    if (sourceTop < 0) {
        height += sourceTop;
        targetTop -= sourceTop;
        sourceTop = 0;
    }
    if (targetLeft < 0) {
        width += targetLeft;
        sourceLeft -= targetLeft;
        targetLeft = 0;
    }
    if (targetTop < 0) {
        height += targetTop;
        sourceTop -= targetTop;
        targetTop = 0;
    }
    width = std::min({width, sourceW - sourceLeft, targetW - targetLeft});
    height = std::min({height, sourceH - sourceTop, targetH - targetTop});
    return {sourceLeft, sourceTop, targetLeft, targetTop, std::max(width, 0), std::max(height, 0)};
}

void checkRasterOp(std::uint32_t rasterOp) {
    if (rasterOp != SRCCOPY)
        raiseFailure(FailureNumber::InvalidProcedureCall, QStringLiteral("cDIBSection"));
}

} // namespace

bool cDIBSection::Create(int width, int height) {
    ClearUp();
    mHeader = BitmapInfoHeader{};
    mHeader.biWidth = width;
    mHeader.biHeight = height;
    if (width <= 0 || height <= 0 || width > 0x7FFFFFF / 3)
        return false;
    const std::size_t size = std::size_t(BytesPerScanLine()) * std::size_t(height);
    if (size > 0x7FFFFFFF)
        return false;
    mHeader.biSizeImage = std::uint32_t(size);
    try {
        mBits.assign(size, 0);
    } catch (const std::bad_alloc&) {
        mBits.clear();
        return false;
    }
    return true;
}

void cDIBSection::ClearUp() {
    std::vector<std::uint8_t>().swap(mBits);
}

void cDIBSection::LoadPictureBlt(const QImage& source, int sourceLeft, int sourceTop,
                                 int sourceWidth, int sourceHeight, std::uint32_t rasterOp) {
    checkRasterOp(rasterOp);
    if (mBits.empty() || source.isNull())
        return;
    if (sourceWidth < 0)
        sourceWidth = Width();
    if (sourceHeight < 0)
        sourceHeight = Height();
    const Span s = clipCopy(sourceLeft, sourceTop, source.width(), source.height(), 0, 0, Width(),
                            Height(), sourceWidth, sourceHeight);
    if (s.width == 0 || s.height == 0)
        return;
    QImage pixels = source;
    if (pixels.format() != QImage::Format_RGB32 && pixels.format() != QImage::Format_ARGB32)
        pixels = source.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < s.height; ++y) {
        const auto* in =
            reinterpret_cast<const QRgb*>(pixels.constScanLine(s.sourceTop + y)) + s.sourceLeft;
        std::uint8_t* out = pixelAt(s.targetLeft, s.targetTop + y);
        for (int x = 0; x < s.width; ++x, out += 3) {
            const QRgb c = in[x];
            out[0] = std::uint8_t(qBlue(c));
            out[1] = std::uint8_t(qGreen(c));
            out[2] = std::uint8_t(qRed(c));
        }
    }
}

void cDIBSection::LoadPictureBlt(const cDIBSection& source, int sourceLeft, int sourceTop,
                                 int sourceWidth, int sourceHeight, std::uint32_t rasterOp) {
    checkRasterOp(rasterOp);
    if (mBits.empty() || source.mBits.empty())
        return;
    if (sourceWidth < 0)
        sourceWidth = Width();
    if (sourceHeight < 0)
        sourceHeight = Height();
    const Span s = clipCopy(sourceLeft, sourceTop, source.Width(), source.Height(), 0, 0, Width(),
                            Height(), sourceWidth, sourceHeight);
    for (int y = 0; y < s.height; ++y)
        std::memmove(pixelAt(s.targetLeft, s.targetTop + y),
                     source.pixelAt(s.sourceLeft, s.sourceTop + y), std::size_t(s.width) * 3);
}

void cDIBSection::PaintPicture(QImage& target, int targetLeft, int targetTop, int targetWidth,
                               int targetHeight, int sourceLeft, int sourceTop,
                               std::uint32_t rasterOp) const {
    checkRasterOp(rasterOp);
    if (mBits.empty() || target.isNull())
        return;
    if (targetWidth < 0)
        targetWidth = Width();
    if (targetHeight < 0)
        targetHeight = Height();
    const Span s = clipCopy(sourceLeft, sourceTop, Width(), Height(), targetLeft, targetTop,
                            target.width(), target.height(), targetWidth, targetHeight);
    if (s.width == 0 || s.height == 0)
        return;
    if (target.format() != QImage::Format_RGB32 && target.format() != QImage::Format_ARGB32)
        target = target.convertToFormat(QImage::Format_RGB32);
    for (int y = 0; y < s.height; ++y) {
        const std::uint8_t* in = pixelAt(s.sourceLeft, s.sourceTop + y);
        auto* out = reinterpret_cast<QRgb*>(target.scanLine(s.targetTop + y)) + s.targetLeft;
        for (int x = 0; x < s.width; ++x, in += 3)
            out[x] = qRgb(in[2], in[1], in[0]);
    }
}

void cDIBSection::PaintPicture(cDIBSection& target, int targetLeft, int targetTop, int targetWidth,
                               int targetHeight, int sourceLeft, int sourceTop,
                               std::uint32_t rasterOp) const {
    checkRasterOp(rasterOp);
    if (mBits.empty() || target.mBits.empty())
        return;
    if (targetWidth < 0)
        targetWidth = Width();
    if (targetHeight < 0)
        targetHeight = Height();
    const Span s = clipCopy(sourceLeft, sourceTop, Width(), Height(), targetLeft, targetTop,
                            target.Width(), target.Height(), targetWidth, targetHeight);
    for (int y = 0; y < s.height; ++y)
        std::memmove(target.pixelAt(s.targetLeft, s.targetTop + y),
                     pixelAt(s.sourceLeft, s.sourceTop + y), std::size_t(s.width) * 3);
}

QImage cDIBSection::toQImage() const {
    if (mBits.empty())
        return {};
    QImage picture(Width(), Height(), QImage::Format_RGB888);
    if (picture.isNull())
        return {};
    for (int y = 0; y < Height(); ++y) {
        const std::uint8_t* in = pixelAt(0, y);
        std::uint8_t* out = picture.scanLine(y);
        for (int x = 0; x < Width(); ++x, in += 3, out += 3) {
            out[0] = in[2];
            out[1] = in[1];
            out[2] = in[0];
        }
    }
    return picture;
}

bool cDIBSection::fromQImage(const QImage& picture) {
    if (!Create(picture.width(), picture.height()))
        return false;
    LoadPictureBlt(picture);
    return true;
}
