#include "ImagingTestUtil.h"

#include "imaging/cDIBSection.h"
#include "imaging/cPalette.h"
#include "platform/modDialogs.h"

#include <FreeImage.h>
#include <QBuffer>
#include <QFile>
#include <cmath>
#include <gif_lib.h>
#include <random>

namespace imagingtest {

QImage photoLike(int width, int height, std::uint32_t seed) {
    std::mt19937 random(seed);
    std::uniform_int_distribution<int> grain(-6, 6);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const bool patch = (x / 40 + y / 30) % 5 == 3; // a few hard-edged patches
            const int n = grain(random);
            const int r =
                patch ? 230 : int(128 + 100 * std::sin(x / 37.0) + 20 * std::cos(y / 11.0));
            const int g = patch ? 40 : int(128 + 90 * std::cos((x + y) / 53.0));
            const int b = patch ? 60 : int(128 + 100 * std::sin(y / 29.0) * std::cos(x / 71.0));
            picture.setPixel(x, y,
                             qRgb(std::clamp(r + n, 0, 255), std::clamp(g + n, 0, 255),
                                  std::clamp(b + n, 0, 255)));
        }
    return picture;
}

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    const bool tiff = qstrcmp(format, "TIFF") == 0;
    if (!tiff && qstrcmp(format, "TGA") != 0) {
        picture.save(&buffer, format);
        return bytes;
    }
    QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    FIBITMAP* dib = FreeImage_ConvertFromRawBits(rgb.bits(), rgb.width(), rgb.height(),
                                                 int(rgb.bytesPerLine()), 32, FI_RGBA_RED_MASK,
                                                 FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK, TRUE);
    FIBITMAP* out = FreeImage_ConvertTo24Bits(dib);
    FIMEMORY* memory = FreeImage_OpenMemory();
    FreeImage_SaveToMemory(tiff ? FIF_TIFF : FIF_TARGA, out, memory, 0);
    BYTE* data = nullptr;
    DWORD size = 0;
    FreeImage_AcquireMemory(memory, &data, &size);
    bytes = QByteArray(reinterpret_cast<const char*>(data), qsizetype(size));
    FreeImage_CloseMemory(memory);
    FreeImage_Unload(out);
    FreeImage_Unload(dib);
    return bytes;
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
    if (!gif || DGifSlurp(gif) != GIF_OK || gif->ImageCount < 1) {
        result.error = QString::fromLatin1(GifErrorString(gif ? gif->Error : error));
        if (gif)
            DGifCloseFile(gif, &error);
        return result;
    }
    result.screenWidth = gif->SWidth;
    result.screenHeight = gif->SHeight;
    for (int i = 0; gif->SColorMap && i < gif->SColorMap->ColorCount; ++i) {
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
        for (const ExtensionBlock* b = blocks; b != blocks + count; ++b) {
            if (b->Function == GRAPHICS_EXT_FUNC_CODE && b->ByteCount >= 4 && (b->Bytes[0] & 1))
                result.transparentIndex = b->Bytes[3];
            result.hasPlainText |= b->Function == PLAINTEXT_EXT_FUNC_CODE;
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
    cDIBSection source, mapped;
    if (!source.fromQImage(picture) || !mapped.Create(picture.width(), picture.height()))
        return {};
    cPalette quantiser;
    quantiser.CreateOptimal(source, nullptr, 1 << bits, 8);
    quantiser.ApplyPalette(source, mapped, nullptr, true);
    for (int i = 1; palette && i <= quantiser.Count(); ++i)
        palette->push_back(qRgb(quantiser.Red(i), quantiser.Green(i), quantiser.Blue(i)));
    return mapped.toQImage().convertToFormat(QImage::Format_RGB32);
}

QByteArray readFile(const QString& path) {
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(bytes);
}

int RecordingSink::ask(const QString& text, int style, const QString&) {
    questions.emplace_back(text, style);
    return questions.size() <= answers.size() ? answers[questions.size() - 1]
                                              : msgBoxDefaultAnswer(style);
}

} // namespace imagingtest
