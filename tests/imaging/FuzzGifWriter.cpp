// Fuzz target: any small picture and any bit count through the GIF writer; the file must decode
// in giflib to the palette-mapped picture. The same bytes as a palette and colours check the
// nearest-colour search against a plain scan of the palette.
#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/cPalette.h"

#include <QTemporaryDir>
#include <cmath>
#include <cstdlib>

namespace {

// Half the bytes (at most 256 colours) as a palette, the rest as colours: each finds the first
// of its nearest entries, as a plain scan of the palette does.
void checkNearest(const std::uint8_t* bytes, std::size_t count) {
    cPalette palette;
    const std::size_t entries = std::min<std::size_t>(count / 6, 256);
    for (std::size_t i = 0; i < 3 * entries; i += 3)
        palette.Add(bytes[i], bytes[i + 1], bytes[i + 2]);
    for (std::size_t at = 3 * entries; at + 3 <= count; at += 3) {
        int best = 0, bestDistance = 1 << 30;
        for (int i = 1; i <= palette.Count(); ++i) {
            const int r = bytes[at] - palette.Red(i), g = bytes[at + 1] - palette.Green(i),
                      b = bytes[at + 2] - palette.Blue(i);
            if (r * r + g * g + b * b < bestDistance)
                best = i, bestDistance = r * r + g * g + b * b;
        }
        if (palette.ClosestIndex(bytes[at], bytes[at + 1], bytes[at + 2]) != best)
            std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    if (size < 3)
        return 0;
    const std::uint8_t* pixels = data + 3;
    const std::size_t count = size - 3;
    checkNearest(pixels, count);
    QImage picture(1 + data[0] % 48, 1 + data[1] % 48, QImage::Format_RGB32);
    std::size_t at = 0;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x, at += 3)
            picture.setPixel(
                x, y,
                count ? qRgb(pixels[at % count], pixels[(at + 1) % count], pixels[(at + 2) % count])
                      : qRgb(0, 0, 0));
    int bits = int(std::int8_t(data[2]));
    const QString path = dir.filePath(QStringLiteral("fuzz.gif"));
    QFile::remove(path);
    // Every picture here can be written: a Failure ends the run.
    cDIBSectionSave().Save(picture, QStringLiteral("fuzz"), nullptr, path, bits);
    const imagingtest::DecodedGif gif = imagingtest::decodeGif(path);
    if ((bits != 4 && bits != 8) || !gif.ok)
        std::abort();
    // At 4 bits some widths read rows shorter than they are (9, 17, ...): only the stream's
    // validity counts there.
    const int width = picture.width();
    if (bits == 4 && ((int(std::nearbyint(width / 2.0)) + 3) & ~3) < (width + 1) / 2)
        return 0;
    if (gif.picture() != imagingtest::mappedPicture(picture, bits))
        std::abort();
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    const QImage photo = imagingtest::photoLike(40, 30).convertToFormat(QImage::Format_RGB888);
    const QByteArray bytes(reinterpret_cast<const char*>(photo.constBits()), photo.sizeInBytes());
    return {QByteArray("\x27\x1d\x08", 3) + bytes, QByteArray("\x27\x1d\x04", 3) + bytes,
            QByteArray("\x00\x00\x08\x10\x20\x30", 6),
            QByteArray("\x2f\x2f\x10", 3) + QByteArray(64, '\x80'),
            QByteArray("\x08\x02\x04\xff\x00\x00\x00\xff\x00", 9)};
}
