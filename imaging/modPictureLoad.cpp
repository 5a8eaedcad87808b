#include "imaging/modPictureLoad.h"

#include "imaging/modFreeImage.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace {

const QString kLoadSource = QStringLiteral("LoadPicture");

quint32 le(const QByteArray& bytes, int at, int size) {
    quint32 value = 0;
    for (int i = size - 1; i >= 0; --i)
        value = value << 8 | quint8(bytes[at + i]);
    return value;
}

// The pixel bytes a BMP's header promises, or -1 when it cannot say (compressed pixels without
// a stated size, or a header too short to read).
qint64 promisedPixelBytes(const QByteArray& head) {
    if (head.size() < 26)
        return -1;
    const quint32 headerSize = le(head, 14, 4);
    qint64 width, height, bitCount;
    quint32 compression = 0, imageSize = 0;
    if (headerSize == 12) {
        width = le(head, 18, 2);
        height = le(head, 20, 2);
        bitCount = le(head, 24, 2);
    } else {
        if (headerSize < 40 || head.size() < 38)
            return -1;
        width = qint32(le(head, 18, 4));
        height = qint32(le(head, 22, 4));
        bitCount = le(head, 28, 2);
        compression = le(head, 30, 4);
        imageSize = le(head, 34, 4);
    }
    if (compression == 0 || compression == 3) { // plain rows, or rows with bit fields
        const qint64 stride = ((qAbs(width) * bitCount + 31) / 32) * 4;
        return stride * qAbs(height);
    }
    return imageSize > 0 ? qint64(imageSize) : -1;
}

// The first bytes of the file; a file that cannot be opened is refused.
QByteArray readHead(const QString& path, qint64& size) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw Failure(FailureNumber::PermissionDenied, kLoadSource,
                      QStringLiteral("it cannot be opened (%1)").arg(file.errorString()));
    size = file.size();
    return file.read(54);
}

// Refuses a BMP cut short: Qt would read the rows it lacks as black.
void refuseShortBitmap(const QByteArray& head, qint64 fileSize) {
    if (!head.startsWith("BM"))
        return;
    const qint64 promised = promisedPixelBytes(head);
    const qint64 held = head.size() >= 14 ? fileSize - qint64(le(head, 10, 4)) : -1;
    if (promised > 0 && held < promised)
        throw Failure(FailureNumber::InvalidPicture, kLoadSource,
                      QStringLiteral("the bitmap is cut short: its header promises %1 bytes of "
                                     "pixels and the file holds %2")
                          .arg(promised)
                          .arg(qMax<qint64>(held, 0)));
}

// The format the content announces, so that Qt need not load every image plugin to ask each;
// empty when it announces none of BMP, GIF and JPEG.
QByteArray announcedFormat(const QByteArray& head) {
    if (head.startsWith("BM"))
        return "bmp";
    if (head.startsWith("GIF8"))
        return "gif";
    if (head.startsWith("\xFF\xD8\xFF"))
        return "jpeg";
    return {};
}

int freeImageFormatOf(const QString& extension) {
    if (extension == QLatin1String("png"))
        return FreeImageFormat::PNG;
    if (extension == QLatin1String("tif") || extension == QLatin1String("tiff"))
        return FreeImageFormat::TIFF;
    if (extension == QLatin1String("tga"))
        return FreeImageFormat::TARGA;
    if (extension == QLatin1String("psd"))
        return FreeImageFormat::PSD;
    if (extension == QLatin1String("pcx"))
        return FreeImageFormat::PCX;
    return -1;
}

PictureFile readWithFreeImage(const QString& path, int format) {
    PictureFile result;
    clearFreeImageError();
    result.picture = FreeImageLoadPicture(path, format);
    if (!result.picture.isNull())
        return result;
    if (!QFileInfo(path).isFile())
        result.reason = QStringLiteral("there is no such file");
    else if (!lastFreeImageError().isEmpty())
        result.reason = lastFreeImageError();
    else
        result.reason = QStringLiteral("FreeImage cannot decode it");
    return result;
}

} // namespace

QImage LoadPicture(const QString& path) {
    if (!QFileInfo(path).isFile())
        raiseFailure(FailureNumber::FileNotFound, kLoadSource);
    qint64 size = 0;
    const QByteArray head = readHead(path, size);
    refuseShortBitmap(head, size);
    const QByteArray format = announcedFormat(head);
    QImageReader reader(path, format);
    if (format.isEmpty())
        reader.setDecideFormatFromContent(true);
    else
        reader.setAutoDetectImageFormat(false);
    QImage picture = reader.read();
    if (picture.isNull())
        throw Failure(FailureNumber::InvalidPicture, kLoadSource,
                      QStringLiteral("it is not a BMP, GIF or JPEG picture that can be read (%1)")
                          .arg(reader.errorString()));
    return picture;
}

PictureFile ReadPictureFile(const QString& path) {
    PictureFile result;
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    if (dot < 0) {
        result.reason = QStringLiteral("the name has no extension to tell its type");
        return result;
    }
    const QString extension = path.mid(dot + 1).toLower();
    if (extension == QLatin1String("bmp") || extension == QLatin1String("gif") ||
        extension == QLatin1String("jpg") || extension == QLatin1String("jpeg")) {
        try {
            result.picture = LoadPicture(path);
        } catch (const Failure& failure) {
            result.unreadable = true;
            result.reason = failure.number() == FailureNumber::FileNotFound
                                ? QStringLiteral("there is no such file")
                                : failure.description();
        }
        return result;
    }
    const int format = freeImageFormatOf(extension);
    if (format < 0) {
        result.reason = QStringLiteral("\"%1\" is not a picture type this program reads")
                            .arg(path.mid(dot + 1));
        return result;
    }
    return readWithFreeImage(path, format);
}

QString NoFileFoundText(const QString& path) {
    const QString fileName = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    return localText(QStringLiteral("STR_NO_FILE_FOUND")) + QLatin1Char('\n') + fileName +
           QLatin1Char('\n');
}

QImage LoadPictureFile(const QString& path, StatusSink& sink) {
    PictureFile file = ReadPictureFile(path);
    if (file.unreadable)
        sink.ask(NoFileFoundText(path), Vb::Information, {});
    return file.picture;
}
