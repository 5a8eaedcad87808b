#include "ImagingTestUtil.h"

#include "imaging/cDIBSection.h"
#include "imaging/cPalette.h"

#include <QFile>
#include <cmath>
#include <gif_lib.h>
#include <random>

namespace imagingtest {

QImage photoLike(int width, int height, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> grain(-6, 6);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < width; ++x) {
            int r = int(128 + 100 * std::sin(x / 37.0) + 20 * std::cos(y / 11.0));
            int g = int(128 + 90 * std::cos((x + y) / 53.0));
            int b = int(128 + 100 * std::sin(y / 29.0) * std::cos(x / 71.0));
            if ((x / 40 + y / 30) % 5 == 3) { // a few hard-edged patches
                r = 230;
                g = 40;
                b = 60;
            }
            const int n = grain(random);
            row[x] = qRgb(std::clamp(r + n, 0, 255), std::clamp(g + n, 0, 255),
                          std::clamp(b + n, 0, 255));
        }
    }
    return picture;
}

QImage noise(int width, int height, std::uint32_t seed) {
    std::mt19937 random(seed);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y) {
        auto* row = reinterpret_cast<QRgb*>(picture.scanLine(y));
        for (int x = 0; x < width; ++x)
            row[x] = 0xFF000000u | (random() & 0xFFFFFFu);
    }
    return picture;
}

QImage DecodedGif::picture() const {
    QImage out(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const std::uint8_t i = indices[std::size_t(y) * std::size_t(width) + std::size_t(x)];
            out.setPixel(x, y, i < colours.size() ? colours[i] : 0xFFFF00FFu);
        }
    return out;
}

DecodedGif decodeGif(const QString& path) {
    DecodedGif result;
    int error = 0;
    GifFileType* gif = DGifOpenFileName(QFile::encodeName(path).constData(), &error);
    if (!gif) {
        result.error = QString::fromLatin1(GifErrorString(error));
        return result;
    }
    if (DGifSlurp(gif) != GIF_OK || gif->ImageCount < 1) {
        result.error = QString::fromLatin1(GifErrorString(gif->Error));
        DGifCloseFile(gif, &error);
        return result;
    }
    result.screenWidth = gif->SWidth;
    result.screenHeight = gif->SHeight;
    if (gif->SColorMap)
        for (int i = 0; i < gif->SColorMap->ColorCount; ++i) {
            const GifColorType c = gif->SColorMap->Colors[i];
            result.colours.push_back(qRgb(c.Red, c.Green, c.Blue));
        }
    const SavedImage& image = gif->SavedImages[0];
    result.width = image.ImageDesc.Width;
    result.height = image.ImageDesc.Height;
    result.interlaced = image.ImageDesc.Interlace;
    result.indices.assign(image.RasterBits,
                          image.RasterBits + std::size_t(result.width) * result.height);
    auto scan = [&](int count, const ExtensionBlock* blocks) {
        for (int i = 0; i < count; ++i) {
            const ExtensionBlock& b = blocks[i];
            if (b.Function == COMMENT_EXT_FUNC_CODE)
                result.comments.push_back(
                    QByteArray(reinterpret_cast<const char*>(b.Bytes), b.ByteCount));
            if (b.Function == GRAPHICS_EXT_FUNC_CODE && b.ByteCount >= 4 && (b.Bytes[0] & 1)) {
                result.hasTransparent = true;
                result.transparentIndex = b.Bytes[3];
            }
            if (b.Function == PLAINTEXT_EXT_FUNC_CODE)
                result.hasPlainText = true;
        }
    };
    for (int i = 0; i < gif->ImageCount; ++i)
        scan(gif->SavedImages[i].ExtensionBlockCount, gif->SavedImages[i].ExtensionBlocks);
    scan(gif->ExtensionBlockCount, gif->ExtensionBlocks);
    result.ok = true;
    DGifCloseFile(gif, &error);
    return result;
}

QImage mappedPicture(const QImage& picture, int bits, std::vector<QRgb>* palette) {
    cDIBSection source;
    source.fromQImage(picture);
    cPalette quantiser;
    quantiser.CreateOptimal(source, nullptr, 1 << bits, 8);
    cDIBSection mapped;
    mapped.Create(picture.width(), picture.height());
    quantiser.ApplyPalette(source, mapped, nullptr, true);
    if (palette) {
        palette->clear();
        for (int i = 1; i <= quantiser.Count(); ++i)
            palette->push_back(qRgb(quantiser.Red(i), quantiser.Green(i), quantiser.Blue(i)));
    }
    return mapped.toQImage().convertToFormat(QImage::Format_RGB32);
}

QByteArray readFile(const QString& path) {
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return f.readAll();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
}

} // namespace imagingtest
