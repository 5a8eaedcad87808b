#include "imaging/modPictureLoad.h"

#include "imaging/modFreeImage.h"
#include "platform/Failure.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"

#include <QFileInfo>
#include <QImageReader>

QImage LoadPicture(const QString& path) {
    const QString source = QStringLiteral("LoadPicture");
    QImageReader reader(path);
    reader.setDecideFormatFromContent(true);
    QImage picture = reader.read();
    if (picture.isNull()) {
        if (!QFileInfo(path).isFile())
            raiseFailure(FailureNumber::FileNotFound, source);
        raiseFailure(FailureNumber::InvalidPicture, source);
    }
    return picture;
}

QImage LoadPictureFile(const QString& path) {
    const qsizetype dot = path.lastIndexOf(QLatin1Char('.'));
    if (dot < 0)
        return {};
    const QString extension = path.mid(dot + 1).toLower();
    const QString fileName = path.mid(path.lastIndexOf(QLatin1Char('/')) + 1);
    try {
        if (extension == QLatin1String("bmp") || extension == QLatin1String("gif") ||
            extension == QLatin1String("jpg") || extension == QLatin1String("jpeg"))
            return LoadPicture(path);
        int format = -1;
        if (extension == QLatin1String("png"))
            format = FreeImageFormat::PNG;
        else if (extension == QLatin1String("tif") || extension == QLatin1String("tiff"))
            format = FreeImageFormat::TIFF;
        else if (extension == QLatin1String("tga"))
            format = FreeImageFormat::TARGA;
        else if (extension == QLatin1String("psd"))
            format = FreeImageFormat::PSD;
        else if (extension == QLatin1String("pcx"))
            format = FreeImageFormat::PCX;
        if (format < 0)
            return {};
        return FreeImageLoadPicture(path, format);
    } catch (const Failure&) {
        MsgBox(localText(QStringLiteral("STR_NO_FILE_FOUND")) + QLatin1Char('\n') + fileName +
                   QLatin1Char('\n'),
               Vb::Information);
        return {};
    }
}
