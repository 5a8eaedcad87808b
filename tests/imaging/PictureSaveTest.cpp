#include "ImagingTestUtil.h"
#include "imaging/DIWriteJpg.h"
#include "imaging/modPictureSave.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

namespace {

int meanDifference(const QImage& a, const QImage& b) {
    long total = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y), q = b.pixel(x, y);
            total += std::abs(qRed(p) - qRed(q)) + std::abs(qGreen(p) - qGreen(q)) +
                     std::abs(qBlue(p) - qBlue(q));
        }
    return int(total / (3L * a.width() * a.height()));
}

} // namespace

TEST(PictureSave, BitmapIsTwentyFourBitsBottomUp) {
    QTemporaryDir dir;
    const QImage picture = photoLike(13, 7);
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("slide.gif")), picture, 0));
    const QByteArray bytes = readFile(dir.filePath(QStringLiteral("slide.bmp")));
    ASSERT_EQ(bytes.size(), 54 + 40 * 7); // rows of 39 bytes padded to 40
    EXPECT_TRUE(bytes.startsWith("BM"));
    EXPECT_EQ(std::uint8_t(bytes[28]), 24);
    EXPECT_EQ(std::uint8_t(bytes[22]), 7); // positive height: bottom row first
    QImage back;
    ASSERT_TRUE(back.loadFromData(bytes, "BMP"));
    EXPECT_EQ(back.convertToFormat(QImage::Format_RGB32), picture);
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("slide.gif"))));
}

TEST(PictureSave, JpegLeavesTheBitmapBeside) {
    QTemporaryDir dir;
    const QImage picture = photoLike(64, 48);
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("s1.xyz")), picture, 1));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("s1.bmp"))));
    QImage jpeg;
    ASSERT_TRUE(jpeg.load(dir.filePath(QStringLiteral("s1.jpg")), "JPG"));
    EXPECT_EQ(jpeg.size(), picture.size());
    EXPECT_LT(meanDifference(jpeg.convertToFormat(QImage::Format_RGB32), picture), 6);
}

TEST(PictureSave, JpegMatchesTheReferenceEncoderAtQualityNinety) {
    const QString cjpeg = QStandardPaths::findExecutable(QStringLiteral("cjpeg"));
    if (cjpeg.isEmpty())
        GTEST_SKIP() << "cjpeg (libjpeg-turbo-progs) is not installed";
    QTemporaryDir dir;
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("r.jpg")), photoLike(81, 35), 1));
    QProcess process;
    process.start(cjpeg,
                  {QStringLiteral("-quality"), QStringLiteral("90"), QStringLiteral("-outfile"),
                   dir.filePath(QStringLiteral("ref.jpg")), dir.filePath(QStringLiteral("r.bmp"))});
    ASSERT_TRUE(process.waitForFinished(20000));
    ASSERT_EQ(process.exitCode(), 0);
    EXPECT_EQ(readFile(dir.filePath(QStringLiteral("r.jpg"))),
              readFile(dir.filePath(QStringLiteral("ref.jpg"))));
}

TEST(PictureSave, GifIsTheEightBitPaletteMappedPicture) {
    QTemporaryDir dir;
    const QImage picture = photoLike(160, 120);
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("g.jpg")), picture, 2));
    const DecodedGif gif = decodeGif(dir.filePath(QStringLiteral("g.gif")));
    ASSERT_TRUE(gif.ok);
    EXPECT_EQ(gif.colours.size(), 256u);
    EXPECT_EQ(gif.picture(), mappedPicture(picture, 8));
    ASSERT_EQ(gif.comments.size(), 1u);
    EXPECT_EQ(gif.comments[0], QByteArray("picDownload Written by the GIF writer v01"));
}

TEST(PictureSave, OtherKindsWriteNothing) {
    QTemporaryDir dir;
    EXPECT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("n.bmp")), photoLike(4, 4), 3));
    EXPECT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("n.bmp")), photoLike(4, 4), -1));
    EXPECT_TRUE(QDir(dir.path()).entryList(QDir::Files).isEmpty());
}

TEST(PictureSave, TheStemIsCutAtTheLastDotOfTheWholePath) {
    QTemporaryDir dir;
    ASSERT_TRUE(QDir(dir.path()).mkdir(QStringLiteral("my.folder")));
    ASSERT_TRUE(
        SavePictureBoxImage(dir.filePath(QStringLiteral("my.folder/slide")), photoLike(4, 4), 0));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("my.bmp"))));
    ASSERT_TRUE(SavePictureBoxImage(dir.filePath(QStringLiteral("plain")), photoLike(4, 4), 0));
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("plainbmp"))));
}

TEST(PictureSave, FailuresGiveFalse) {
    QTemporaryDir dir;
    EXPECT_FALSE(SavePictureBoxImage(dir.filePath(QStringLiteral("x.bmp")), QImage(), 0));
    EXPECT_FALSE(SavePictureBoxImage(dir.filePath(QStringLiteral("x.bmp")), QImage(), 2));
    EXPECT_FALSE(
        SavePictureBoxImage(dir.filePath(QStringLiteral("no/such/x.bmp")), photoLike(4, 4), 1));
    EXPECT_FALSE(
        SavePictureBoxImage(dir.filePath(QStringLiteral("no/such/x.gif")), photoLike(4, 4), 2));
}

TEST(PictureSave, JpegWriterReportsUnreadableBitmaps) {
    QTemporaryDir dir;
    writeFile(dir.filePath(QStringLiteral("bad.bmp")), QByteArray("BM not really"));
    EXPECT_EQ(DIWriteJpg(QFile::encodeName(dir.filePath(QStringLiteral("o.jpg"))),
                         QFile::encodeName(dir.filePath(QStringLiteral("bad.bmp"))), 90, 0),
              1);
    EXPECT_FALSE(QFileInfo::exists(dir.filePath(QStringLiteral("o.jpg"))));
    EXPECT_EQ(DIWriteJpg(QFile::encodeName(dir.filePath(QStringLiteral("o.jpg"))),
                         QFile::encodeName(dir.filePath(QStringLiteral("none.bmp"))), 90, 0),
              1);
}
