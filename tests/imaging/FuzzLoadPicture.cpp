// Fuzz target: any bytes under any of the names the loader knows; reading gives a picture or a
// reason, never a crash.
#include "ImagingTestUtil.h"
#include "imaging/modPictureLoad.h"
#include "imaging/modPictureSave.h"

#include <QTemporaryDir>
#include <cstdlib>

namespace {
const char* const kExtensions[] = {"bmp", "gif", "jpg", "jpeg", "png", "tif", "tga", "psd", "pcx"};
constexpr std::size_t kExtensionCount = sizeof kExtensions / sizeof kExtensions[0];
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    if (size < 1)
        return 0;
    const QString path = dir.filePath(QStringLiteral("input.") +
                                      QLatin1String(kExtensions[data[0] % kExtensionCount]));
    imagingtest::writeFile(
        path, QByteArray(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1)));
    const PictureFile file = ReadPictureFile(path);
    if (file.picture.isNull() ? file.reason.isEmpty()
                              : file.unreadable || file.picture.width() <= 0)
        std::abort();
    QFile::remove(path);
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    using imagingtest::encoded;
    const QImage picture = imagingtest::photoLike(24, 16);
    QTemporaryDir dir;
    SavePictureBoxImage(dir.filePath(QStringLiteral("seed.gif")), picture, 2);
    // An 8-bit run-length PCX picture of 8 by 4 pixels with its 256-colour palette.
    QByteArray pcx = QByteArray::fromHex("0a0501080000000007000300") + QByteArray(53, '\0') +
                     QByteArray::fromHex("010800") + QByteArray(60, '\0');
    for (int i = 0; i < 32; ++i)
        pcx.append(char(0xC1)).append(char(i * 7));
    pcx.append(char(12));
    for (int i = 0; i < 256; ++i)
        pcx.append(char(i)).append(char(255 - i)).append(char(i / 2));
    auto with = [](int extension, const QByteArray& bytes) {
        return QByteArray(1, char(extension)) + bytes;
    };
    return {with(0, encoded(picture, "BMP")),
            with(0, encoded(picture.convertToFormat(QImage::Format_Indexed8), "BMP")),
            with(1, imagingtest::readFile(dir.filePath(QStringLiteral("seed.gif")))),
            with(2, encoded(picture, "JPG")),
            with(4, encoded(picture, "PNG")),
            with(5, encoded(picture, "TIFF")),
            with(6, encoded(picture, "TGA")),
            with(7, QByteArray::fromHex("3842505300010000000000000003000000040000000400080003"
                                        "000000000000000000000000") +
                        QByteArray(48, '\x40')),
            with(8, pcx)};
}
