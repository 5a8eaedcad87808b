// Fuzz target: any bytes under any of the names the loader knows; loading must give a picture
// or nothing, never a crash.
#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modPictureLoad.h"
#include "support/ScriptedResponder.h"

#include <FreeImage.h>
#include <QBuffer>
#include <QTemporaryDir>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {
const char* const kExtensions[] = {"bmp", "gif", "jpg", "jpeg", "png",
                                   "tif", "tga", "psd", "pcx",  "TIFF"};
constexpr std::size_t kExtensionCount = sizeof kExtensions / sizeof kExtensions[0];

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, format);
    return bytes;
}

QByteArray freeImageEncoded(const QImage& picture, FREE_IMAGE_FORMAT format) {
    QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    FIBITMAP* dib = FreeImage_ConvertFromRawBits(rgb.bits(), rgb.width(), rgb.height(),
                                                 int(rgb.bytesPerLine()), 32, FI_RGBA_RED_MASK,
                                                 FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK, TRUE);
    FIBITMAP* out = FreeImage_ConvertTo24Bits(dib);
    FIMEMORY* memory = FreeImage_OpenMemory();
    FreeImage_SaveToMemory(format, out, memory, 0);
    BYTE* data = nullptr;
    DWORD size = 0;
    FreeImage_AcquireMemory(memory, &data, &size);
    QByteArray bytes(reinterpret_cast<const char*>(data), int(size));
    FreeImage_CloseMemory(memory);
    FreeImage_Unload(out);
    FreeImage_Unload(dib);
    return bytes;
}

QByteArray gifBytes(const QImage& picture) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("seed.gif"));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(picture, QStringLiteral("seed"), nullptr, path, bits);
    return imagingtest::readFile(path);
}

// A small run-length PCX picture of 8 bits with its 256-colour palette.
QByteArray pcx() {
    QByteArray bytes(128, '\0');
    bytes[0] = 10;
    bytes[1] = 5;
    bytes[2] = 1;
    bytes[3] = 8;
    bytes[8] = 7;  // xmax = 7
    bytes[10] = 3; // ymax = 3
    bytes[65] = 1; // planes
    bytes[66] = 8; // bytes a line
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 8; ++x) {
            bytes.append(char(0xC1));
            bytes.append(char(x * 30 + y));
        }
    bytes.append(char(12));
    for (int i = 0; i < 256; ++i)
        bytes.append(char(i)).append(char(255 - i)).append(char(i / 2));
    return bytes;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    static ScriptedResponder responder; // boxes are answered, never shown
    if (size < 1)
        return 0;
    const QString path = dir.filePath(QStringLiteral("input.") +
                                      QLatin1String(kExtensions[data[0] % kExtensionCount]));
    imagingtest::writeFile(
        path, QByteArray(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1)));
    const QImage picture = LoadPictureFile(path);
    if (!picture.isNull() && (picture.width() <= 0 || picture.height() <= 0))
        std::abort();
    responder.boxes.clear();
    QFile::remove(path);
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    const QImage picture = imagingtest::photoLike(24, 16);
    auto with = [](int extension, const QByteArray& bytes) {
        return QByteArray(1, char(extension)) + bytes;
    };
    std::vector<QByteArray> seeds = {
        with(0, encoded(picture, "BMP")),
        with(0, encoded(picture.convertToFormat(QImage::Format_Indexed8), "BMP")),
        with(1, gifBytes(picture)),
        with(2, encoded(picture, "JPG")),
        with(4, encoded(picture, "PNG")),
        with(4, encoded(picture.convertToFormat(QImage::Format_Indexed8), "PNG")),
        with(5, freeImageEncoded(picture, FIF_TIFF)),
        with(6, freeImageEncoded(picture, FIF_TARGA)),
        with(8, pcx()),
        with(7, QByteArray("8BPS\x00\x01\x00\x00\x00\x00\x00\x00\x00\x03\x00\x00\x00\x04\x00\x00"
                           "\x00\x04\x00\x08\x00\x03\x00\x00\x00\x00\x00\x00\x00\x00\x00\x00"
                           "\x00\x00",
                           38) +
                    QByteArray(48, '\x40')),
    };
    return seeds;
}
