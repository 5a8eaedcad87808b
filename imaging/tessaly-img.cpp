// tessaly-img INPUT OUTPUT: converts a picture file the way the program publishes slide
// pictures. INPUT is read by its extension (bmp, gif, jpg, jpeg, png, tif, tiff, tga, psd, pcx);
// OUTPUT's extension picks the form: bmp, jpg (the BMP it is made from stays beside) or gif.
#include "imaging/modFreeImage.h"
#include "imaging/modPictureLoad.h"
#include "imaging/modPictureSave.h"
#include "platform/modDialogs.h"

#include <QFileInfo>
#include <cstdio>

namespace {

// Prints what the program would show in a box instead of showing it.
class StderrResponder : public DialogResponder {
public:
    StderrResponder() { setDialogResponder(this); }
    ~StderrResponder() override { setDialogResponder(nullptr); }
    bool reported = false;

    int msgBox(const QString& text, int style, const QString&) override {
        std::fprintf(stderr, "tessaly-img: %s\n", text.simplified().toLocal8Bit().constData());
        reported = true;
        return msgBoxDefaultAnswer(style);
    }
    bool chooseColor(QWidget*, std::int32_t&, int) override { return false; }
    bool getOpenFileName(QWidget*, QString&, const QString&, const QString&, const QString&,
                         const QString&) override {
        return false;
    }
    QString popupChoice(QMenu*, const QPoint&) override { return {}; }
};

int fail(const QString& text) {
    std::fprintf(stderr, "tessaly-img: %s\n", text.toLocal8Bit().constData());
    return 1;
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
    const QString outExtension = QFileInfo(output).suffix().toLower();
    int kind;
    if (outExtension == QLatin1String("bmp"))
        kind = 0;
    else if (outExtension == QLatin1String("jpg"))
        kind = 1;
    else if (outExtension == QLatin1String("gif"))
        kind = 2;
    else
        return fail(QStringLiteral("%1: the output must end in .bmp, .jpg or .gif").arg(output));

    StderrResponder responder;
    clearFreeImageError();
    const QImage picture = LoadPictureFile(input);
    if (picture.isNull()) {
        if (responder.reported)
            return 1;
        QString reason = lastFreeImageError();
        if (reason.isEmpty())
            reason = QStringLiteral("not a picture this program reads");
        return fail(QStringLiteral("%1: cannot read the picture (%2)").arg(input, reason));
    }
    if (!SavePictureBoxImage(output, picture, kind))
        return fail(QStringLiteral("%1: cannot write the picture").arg(output));
    if (kind == 1 &&
        QFileInfo(output.left(output.lastIndexOf(QLatin1Char('.')) + 1) + QStringLiteral("jpg"))
                .size() <= 0)
        return fail(QStringLiteral("%1: cannot write the JPEG").arg(output));
    return 0;
}
