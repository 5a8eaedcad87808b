#include "ImagingTestUtil.h"

#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

namespace {

struct ToolRun {
    int exitCode = -1;
    QString errors;
};

ToolRun runTool(const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral(TESSALY_BIN_DIR "/tessaly-img"), arguments);
    if (!process.waitForFinished(30000))
        return {};
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromLocal8Bit(process.readAllStandardError())};
}

} // namespace

TEST(ImgTool, ConvertsABitmapToEachForm) {
    QTemporaryDir dir;
    const QImage picture = photoLike(64, 40);
    ASSERT_TRUE(picture.save(dir.filePath(QStringLiteral("in.bmp")), "BMP"));
    const QString in = dir.filePath(QStringLiteral("in.bmp"));

    ToolRun run = runTool({in, dir.filePath(QStringLiteral("out.gif"))});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    const DecodedGif gif = decodeGif(dir.filePath(QStringLiteral("out.gif")));
    ASSERT_TRUE(gif.ok);
    EXPECT_EQ(gif.picture(), mappedPicture(picture, 8));

    run = runTool({in, dir.filePath(QStringLiteral("out.jpg"))});
    EXPECT_EQ(run.exitCode, 0) << run.errors.toStdString();
    EXPECT_GT(QFileInfo(dir.filePath(QStringLiteral("out.jpg"))).size(), 0);
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("out.bmp")))); // left beside

    run = runTool({in, dir.filePath(QStringLiteral("copy.bmp"))});
    EXPECT_EQ(run.exitCode, 0);
    QImage copy(dir.filePath(QStringLiteral("copy.bmp")));
    EXPECT_EQ(copy.convertToFormat(QImage::Format_RGB32), picture);
}

TEST(ImgTool, BadInputIsAClearErrorAndWritesNothing) {
    QTemporaryDir dir;
    const QString out = dir.filePath(QStringLiteral("out.gif"));
    ToolRun run = runTool({dir.filePath(QStringLiteral("missing.bmp")), out});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("missing.bmp"))) << run.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(out));

    writeFile(dir.filePath(QStringLiteral("broken.png")), QByteArray(200, '\x01'));
    run = runTool({dir.filePath(QStringLiteral("broken.png")), out});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.errors.contains(QStringLiteral("cannot read"))) << run.errors.toStdString();
    EXPECT_FALSE(QFileInfo::exists(out));

    const QImage picture = photoLike(8, 8);
    ASSERT_TRUE(picture.save(dir.filePath(QStringLiteral("in.bmp")), "BMP"));
    run = runTool({dir.filePath(QStringLiteral("in.bmp")), dir.filePath(QStringLiteral("o.tif"))});
    EXPECT_EQ(run.exitCode, 1);
    run = runTool({dir.filePath(QStringLiteral("in.bmp"))});
    EXPECT_EQ(run.exitCode, 2);
}
