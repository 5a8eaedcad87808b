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
    if (!process.waitForFinished(30000) || process.exitStatus() != QProcess::NormalExit)
        return {};
    return {process.exitCode(), QString::fromLocal8Bit(process.readAllStandardError())};
}
} // namespace

TEST(ImgTool, ConvertsABitmapToEachForm) {
    QTemporaryDir dir;
    const QImage picture = photoLike(64, 40);
    const QString in = dir.filePath(QStringLiteral("in.bmp"));
    ASSERT_TRUE(picture.save(in, "BMP"));
    for (const char* out : {"out.gif", "out.jpg", "copy.bmp"}) {
        const ToolRun run = runTool({in, dir.filePath(QString::fromLatin1(out))});
        EXPECT_EQ(run.exitCode, 0) << out << run.errors.toStdString();
    }
    EXPECT_EQ(decodeGif(dir.filePath(QStringLiteral("out.gif"))).picture(),
              mappedPicture(picture, 8));
    EXPECT_GT(QFileInfo(dir.filePath(QStringLiteral("out.jpg"))).size(), 0);
    EXPECT_TRUE(QFileInfo::exists(dir.filePath(QStringLiteral("out.bmp")))); // left beside
    EXPECT_EQ(
        QImage(dir.filePath(QStringLiteral("copy.bmp"))).convertToFormat(QImage::Format_RGB32),
        picture);
}

TEST(ImgTool, BadInputIsASentenceAndWritesNothing) {
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
        EXPECT_TRUE(run.errors.startsWith(QStringLiteral("tessaly-img: The picture %1 ").arg(in)))
            << run.errors.toStdString();
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(reason))) << run.errors.toStdString();
        EXPECT_FALSE(run.errors.contains(QStringLiteral("STR_"))) << run.errors.toStdString();
        EXPECT_FALSE(QFileInfo::exists(out)) << name;
    }
    EXPECT_EQ(runTool({dir.filePath(QStringLiteral("short.bmp")), "o.tif"}).exitCode, 1);
    EXPECT_EQ(runTool({dir.filePath(QStringLiteral("short.bmp"))}).exitCode, 2);
}
