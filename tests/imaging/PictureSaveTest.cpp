#include "ImagingTestUtil.h"
#include "imaging/modPictureSave.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

TEST(PictureSave, EachFormWritesItsFilesBesideTheStem) {
    QTemporaryDir dir;
    const QImage picture = photoLike(13, 7);
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("my.folder")));
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("slide.gif")), picture, 0));
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("s1.xyz")), picture, 1));
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("my.folder/g")), picture, 2));
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("plain")), picture, 0));
    EXPECT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("n.bmp")), picture, 3));
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files),
              QStringList({"my.gif", "plainbmp", "s1.bmp", "s1.jpg", "slide.bmp"}));
    // A 24-bit bitmap, bottom row first, rows of 39 bytes padded to 40.
    const QByteArray bmp = readFile(dir.filePath(QStringLiteral("slide.bmp")));
    ASSERT_EQ(bmp.size(), 54 + 40 * 7);
    EXPECT_EQ(bmp.mid(18, 12), QByteArray("\x0D\0\0\0\x07\0\0\0\x01\0\x18\0", 12));
    EXPECT_EQ(QImage::fromData(bmp, "BMP").convertToFormat(QImage::Format_RGB32), picture);
    const QByteArray jpeg = readFile(dir.filePath(QStringLiteral("s1.jpg")));
    EXPECT_EQ(QImage::fromData(jpeg, "JPG").size(), picture.size());
    // Quality 90: the luminance table opens with 3, 2, 2, 3, 2, 2, 3.
    EXPECT_TRUE(jpeg.contains(QByteArray::fromHex("ffdb004300030202030202")));
    EXPECT_EQ(decodeGif(dir.filePath(QStringLiteral("my.gif"))).picture(),
              mappedPicture(picture, 8));
}

// tessaly-img, the command-line form of the same conversions.
namespace {
struct ToolRun {
    int exitCode = -1;
    QString errors;
};

ToolRun runTool(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(TESSALY_BIN_DIR "/tessaly-img"), arguments);
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardError())};
}
} // namespace

TEST(ImgTool, ConvertsOrSaysWhyNotInASentence) {
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("out.gif"));
    const QByteArray bmp = encoded(photoLike(16, 16), "BMP");
    writeFile(dir.filePath(QStringLiteral("short.bmp")), bmp.left(bmp.size() - 100));
    writeFile(dir.filePath(QStringLiteral("broken.png")), QByteArray(200, '\x01'));
    const std::pair<const char*, const char*> cases[] = {
        {"missing.bmp", "cannot be read: there is no such file."},
        {"short.bmp", "cannot be read: the bitmap is cut short: its header promises 768 bytes "
                      "of pixels and the file holds 668."},
        {"broken.png", "cannot be read: "}};
    for (const auto& [name, reason] : cases) {
        const QString in = dir.filePath(QString::fromLatin1(name));
        const ToolRun run = runTool({in, out});
        EXPECT_EQ(run.exitCode, 1) << name;
        EXPECT_TRUE(run.errors.startsWith(QStringLiteral("tessaly-img: The picture %1 ").arg(in)) &&
                    run.errors.contains(QString::fromLatin1(reason)))
            << run.errors.toStdString();
        EXPECT_FALSE(QFileInfo::exists(out)) << name;
    }
    const QString good = dir.filePath(QStringLiteral("good.bmp"));
    writeFile(good, bmp);
    for (const char* form : {"good.gif", "good.jpg", "copy.bmp"})
        EXPECT_EQ(runTool({good, dir.filePath(QString::fromLatin1(form))}).exitCode, 0) << form;
    EXPECT_EQ(decodeGif(dir.filePath(QStringLiteral("good.gif"))).picture(),
              mappedPicture(photoLike(16, 16), 8));
    EXPECT_EQ(runTool({good, "o.tif"}).exitCode, 1);
    EXPECT_EQ(runTool({dir.filePath(QStringLiteral("short.bmp"))}).exitCode, 2);
}
