#include "imaging/modPictureSave.h"

#include "imaging/DIWriteJpg.h"
#include "imaging/cDIBSection.h"
#include "imaging/cDIBSectionSave.h"
#include "platform/Failure.h"

#include <QFile>
#include <cstdio>
#include <new>

namespace {
void putLe(std::uint8_t* at, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        at[i] = std::uint8_t(value >> (8 * i));
}
} // namespace

void SavePicture(const QImage& picture, const QString& path) {
    const QString source = QStringLiteral("SavePicture");
    if (picture.isNull())
        raiseFailure(FailureNumber::InvalidPropertyValue, source);
    cDIBSection pixels;
    if (!pixels.fromQImage(picture))
        raiseFailure(FailureNumber::OutOfMemory, source);
    const std::uint32_t imageSize = pixels.Header().biSizeImage;
    std::uint8_t header[54] = {'B', 'M'};
    putLe(header + 2, 54 + imageSize, 4);
    putLe(header + 10, 54, 4);
    putLe(header + 14, 40, 4);
    putLe(header + 18, std::uint32_t(pixels.Width()), 4);
    putLe(header + 22, std::uint32_t(pixels.Height()), 4);
    putLe(header + 26, 1, 2);
    putLe(header + 28, 24, 2);
    putLe(header + 34, imageSize, 4);
    FILE* f = std::fopen(QFile::encodeName(path).constData(), "wb");
    if (!f)
        raiseFailure(FailureNumber::PathFileAccess, source);
    const bool written = std::fwrite(header, 1, sizeof header, f) == sizeof header &&
                         std::fwrite(pixels.DIBSectionBitsPtr(), 1, imageSize, f) == imageSize;
    if (std::fclose(f) != 0 || !written)
        raiseFailure(FailureNumber::DiskFull, source);
}

bool SavePictureBoxImage(const QString& filePath, const QImage& picture, int kind) {
    return SavePictureBoxImage(filePath, picture, kind, QStringLiteral("picDownload"));
}

bool SavePictureBoxImage(const QString& filePath, const QImage& picture, int kind,
                         const QString& pictureName, StatusSink& sink) {
    const qsizetype dot = filePath.lastIndexOf(QLatin1Char('.'));
    const QString base = dot < 0 ? filePath : filePath.left(dot + 1);
    try {
        switch (kind) {
        case 0:
            SavePicture(picture, base + QStringLiteral("bmp"));
            break;
        case 1:
            SavePicture(picture, base + QStringLiteral("bmp"));
            // The encoder's answer is no part of the save's: the bitmap beside stays either way.
            DIWriteJpg(QFile::encodeName(base + QStringLiteral("jpg")),
                       QFile::encodeName(base + QStringLiteral("bmp")), 90, 0);
            break;
        case 2: {
            cDIBSectionSave writer(sink);
            int bits = 8;
            writer.Save(picture, pictureName, nullptr, base + QStringLiteral("gif"), bits);
            break;
        }
        default:
            break;
        }
    } catch (const Failure&) {
        return false;
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}
