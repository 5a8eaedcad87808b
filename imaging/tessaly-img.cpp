// tessaly-img INPUT OUTPUT: converts a picture file the way the program publishes slide
// pictures. INPUT is read by its extension (bmp, gif, jpg, jpeg, png, tif, tiff, tga, psd, pcx);
// OUTPUT's extension picks the form: bmp, jpg (the BMP it is made from stays beside) or gif.
#include "imaging/modPictureLoad.h"
#include "imaging/modPictureSave.h"

#include <QFileInfo>
#include <cstdio>

namespace {

int fail(const QString& text) {
    std::fprintf(stderr, "tessaly-img: %s\n", text.toLocal8Bit().constData());
    return 1;
}

// The form SavePictureBoxImage writes for an output name: 0 BMP, 1 JPEG, 2 GIF, -1 none.
int formOf(const QString& output) {
    const QString extension = QFileInfo(output).suffix().toLower();
    if (extension == QLatin1String("bmp"))
        return 0;
    if (extension == QLatin1String("jpg"))
        return 1;
    if (extension == QLatin1String("gif"))
        return 2;
    return -1;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "usage: tessaly-img INPUT OUTPUT\n"
                             "  OUTPUT ends in .bmp, .jpg or .gif\n");
        return 2;
    }
    const QString input = QString::fromLocal8Bit(argv[1]);
    const QString output = QString::fromLocal8Bit(argv[2]);
    const int kind = formOf(output);
    if (kind < 0)
        return fail(QStringLiteral("%1: the output must end in .bmp, .jpg or .gif").arg(output));

    const PictureFile file = ReadPictureFile(input);
    if (file.picture.isNull()) {
        QString reason = file.reason;
        while (reason.endsWith(QLatin1Char('.')))
            reason.chop(1);
        return fail(QStringLiteral("The picture %1 cannot be read: %2.").arg(input, reason));
    }
    if (!SavePictureBoxImage(output, file.picture, kind))
        return fail(QStringLiteral("The picture %1 cannot be written.").arg(output));
    // The JPEG encoder's result is not part of the save's answer: look for its file instead.
    if (kind == 1 &&
        QFileInfo(output.left(output.lastIndexOf(QLatin1Char('.')) + 1) + QStringLiteral("jpg"))
                .size() <= 0)
        return fail(QStringLiteral("The JPEG picture %1 cannot be written.").arg(output));
    return 0;
}
