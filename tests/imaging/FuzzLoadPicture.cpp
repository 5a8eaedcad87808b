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
            with(8, QByteArray(128, '\x0a'))};
}
