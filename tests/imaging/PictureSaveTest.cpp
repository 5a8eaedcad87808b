#include "ImagingTestUtil.h"
#include "imaging/DIWriteJpg.h"
#include "imaging/modPictureSave.h"

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
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
    EXPECT_EQ(QImage(dir.filePath(QStringLiteral("s1.jpg")), "JPG").size(), picture.size());
    EXPECT_EQ(decodeGif(dir.filePath(QStringLiteral("my.gif"))).picture(),
              mappedPicture(picture, 8));
}

TEST(PictureSave, JpegMatchesTheReferenceEncoderAtQualityNinety) {
    const QString cjpeg = QStandardPaths::findExecutable(QStringLiteral("cjpeg"));
    if (cjpeg.isEmpty())
        GTEST_SKIP() << "cjpeg (libjpeg-turbo-progs) is not installed";
    QTemporaryDir dir;
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("r.jpg")), photoLike(81, 35), 1));
    QProcess process;
    process.start(cjpeg, {"-quality", "90", "-outfile", dir.filePath(QStringLiteral("ref.jpg")),
                          dir.filePath(QStringLiteral("r.bmp"))});
    ASSERT_TRUE(process.waitForFinished(20000));
    ASSERT_EQ(process.exitCode(), 0);
    EXPECT_EQ(readFile(dir.filePath(QStringLiteral("r.jpg"))),
              readFile(dir.filePath(QStringLiteral("ref.jpg"))));
}

TEST(PictureSave, FailuresGiveFalse) {
    QTemporaryDir dir;
    EXPECT_FALSE(SavePictureBoxImage(dir.filePath(QStringLiteral("x.bmp")), QImage(), 0));
    EXPECT_FALSE(SavePictureBoxImage(dir.filePath(QStringLiteral("x.bmp")), QImage(), 2));
    for (const int kind : {1, 2})
        EXPECT_FALSE(SavePictureBoxImage(dir.filePath(QStringLiteral("no/such/x.bmp")),
                                         photoLike(4, 4), kind));
    writeFile(dir.filePath(QStringLiteral("bad.bmp")), QByteArray("BM not really"));
    const QByteArray jpeg = QFile::encodeName(dir.filePath(QStringLiteral("o.jpg")));
    EXPECT_EQ(DIWriteJpg(jpeg, QFile::encodeName(dir.filePath(QStringLiteral("bad.bmp"))), 90, 0),
              1);
    EXPECT_EQ(DIWriteJpg(jpeg, QFile::encodeName(dir.filePath(QStringLiteral("none.bmp"))), 90, 0),
              1);
    EXPECT_FALSE(QFile::exists(QString::fromLocal8Bit(jpeg)));
}
