#include "ImagingTestUtil.h"
#include "imaging/modFreeImage.h"
#include "imaging/modPictureLoad.h"
#include "imaging/modPictureSave.h"
#include "platform/ChildProcess.h"
#include "platform/modDialogs.h"
#include "platform/modText.h"
#include "support/ScriptedResponder.h"

#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace imagingtest;

namespace {
class PictureLoad : public testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedResponder boxes; // the loader itself never shows a box
    RecordingSink sink;
    QImage picture = photoLike(37, 23);
    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }
    void TearDown() override { EXPECT_TRUE(boxes.boxes.empty()); }
};
} // namespace

TEST_F(PictureLoad, ReadsBothRoadsByTheLowerCasedExtension) {
    for (const char* format : {"BMP", "PNG", "TIFF", "TGA"})
        writeFile(path("a.") + QString::fromLatin1(format).toLower(), encoded(picture, format));
    ASSERT_TRUE(SavePictureBoxImage(path("a.gif"), picture, 2));
    writeFile(path("b.JPEG"), encoded(picture, "JPG"));
    writeFile(path("c.JPG"), encoded(picture, "PNG")); // the platform road reads by content
    writeFile(path("c.tga"), encoded(picture, "PNG")); // FreeImage is told the format by name
    const QImage twoColours = picture.convertToFormat(QImage::Format_Mono);
    writeFile(path("p1.png"), encoded(twoColours, "PNG"));
    writeFile(path("p8.png"), encoded(twoColours.convertToFormat(QImage::Format_Indexed8), "PNG"));
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    for (const char* name : {"a.bmp", "a.png", "a.tiff", "a.tga", "c.JPG"})
        EXPECT_EQ(LoadPictureFile(path(name), sink).convertToFormat(QImage::Format_RGB32), rgb)
            << name;
    for (const char* name : {"p1.png", "p8.png"}) // palette pictures of 1 and 8 bits
        EXPECT_EQ(LoadPictureFile(path(name)), twoColours.convertToFormat(QImage::Format_RGB32));
    EXPECT_EQ(LoadPictureFile(path("a.gif"), sink).size(), picture.size());
    EXPECT_EQ(LoadPictureFile(path("b.JPEG"), sink).size(), picture.size());
    for (const char* name : {"c.tga", "no-dot", "d.webp", "missing.png"}) {
        const PictureFile file = ReadPictureFile(path(name));
        EXPECT_TRUE(file.picture.isNull() && !file.unreadable && !file.reason.isEmpty()) << name;
    }
    EXPECT_TRUE(sink.questions.empty());
}

TEST_F(PictureLoad, MissingDamagedOrShortPicturesAskTheSinkForTheNoFileBox) {
    setTextLookup([](const QString& key) {
        return key == QLatin1String("STR_NO_FILE_FOUND") ? QStringLiteral("File not found:") : key;
    });
    const QByteArray jpeg = encoded(picture, "JPG");
    const QByteArray bmp = encoded(picture, "BMP");
    writeFile(path("short.jpg"), jpeg.left(jpeg.size() / 2));
    writeFile(path("head.bmp"), bmp.left(40));
    writeFile(path("rows.bmp"), bmp.left(bmp.size() - 10)); // Qt would fill the rows with black
    writeFile(path("empty.gif"), QByteArray());
    for (const char* name : {"nothere.bmp", "short.jpg", "head.bmp", "rows.bmp", "empty.gif"}) {
        sink.questions.clear();
        EXPECT_TRUE(LoadPictureFile(path(name), sink).isNull()) << name;
        ASSERT_EQ(sink.questions.size(), 1u) << name;
        EXPECT_EQ(sink.questions[0].first,
                  QStringLiteral("File not found:\n%1\n").arg(QString::fromLatin1(name)));
        EXPECT_EQ(sink.questions[0].second, int(Vb::Information));
    }
    setTextLookup(nullptr);
    EXPECT_EQ(ReadPictureFile(path("nothere.bmp")).reason, QStringLiteral("there is no such file"));
    EXPECT_TRUE(ReadPictureFile(path("rows.bmp")).reason.contains(QStringLiteral("cut short")));
    // The whole bitmap still reads.
    writeFile(path("whole.bmp"), bmp);
    EXPECT_FALSE(LoadPictureFile(path("whole.bmp")).isNull());
}

TEST_F(PictureLoad, BrokenFreeImagePicturesGiveNothingQuietlyWithTheirReason) {
    const QByteArray png = encoded(picture, "PNG");
    const QByteArray tiff = encoded(picture, "TIFF");
    // A Targa header of 60000 by 60000 pixels and no pixels.
    const QByteArray huge = QByteArray::fromHex("000002000000000000000000") +
                            "\x60\xEA\x60\xEA\x18" + QByteArray(1, '\0');
    // An RLE Photoshop file whose first run overflows its row: FreeImage writes past its
    // buffer on it, which costs only the child that decodes it.
    const QByteArray psd =
        QByteArray::fromHex("3842505300010000000000000003000000040000000400080003000000000000000000"
                            "000000000100000000"
                            "00000003000000040000000400080003000000000000000000000000") +
        QByteArray(90, '\x40');
    const std::pair<const char*, QByteArray> cases[] = {{"short.png", png.left(png.size() / 3)},
                                                        {"short.tif", tiff.left(tiff.size() / 2)},
                                                        {"head.tif", tiff.left(16)},
                                                        {"huge.tga", huge},
                                                        {"broken.psd", psd}};
    testing::internal::CaptureStderr();
    for (const auto& [name, bytes] : cases) {
        writeFile(path(name), bytes);
        const PictureFile file = ReadPictureFile(path(name));
        // A truncated file may still give a partial picture; one that gives none says why.
        EXPECT_FALSE(file.picture.isNull() && file.reason.isEmpty()) << name;
        EXPECT_FALSE(file.unreadable) << name;
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr().find("TIFF"), std::string::npos);
    EXPECT_TRUE(ReadPictureFile(path("huge.tga")).reason.contains(QStringLiteral("3600000000")));
    writeFile(path("fine.png"), png); // the next picture loads as usual
    EXPECT_EQ(LoadPictureFile(path("fine.png")), picture.convertToFormat(QImage::Format_RGB32));
    QImage none;
    EXPECT_FALSE(FreeImage_BMP_From_DIB(nullptr, none));
    EXPECT_EQ(lastFreeImageError(),
              QStringLiteral("[FreeImage_BMP_From_DIB] No DIB specified to convert"));
}

// The child process FreeImage decodes in.
TEST(ChildProcess, GivesTheChildsBytesAndNothingElse) {
    static int touched = 0; // changed in the child's memory only
    const ChildRun run =
        runInChild([] { return ++touched, QByteArray(100000, 'a') + "end"; }, 10000, 1 << 20);
    EXPECT_TRUE(run.started && run.completed) << run.failure.toStdString();
    EXPECT_EQ(run.bytes, QByteArray(100000, 'a') + "end");
    EXPECT_EQ(touched, 0);
}

TEST(ChildProcess, ACrashAHangOrTooManyBytesCostOnlyTheChild) {
    const struct {
        std::function<QByteArray()> work;
        int timeoutMs;
        const char* failure;
    } cases[] = {
        {[] { return std::raise(SIGSEGV), QByteArray("never"); }, 10000, "signal 11"},
        {[]() -> QByteArray { throw std::runtime_error("thrown"); }, 10000, "signal 6"},
        {[] { return ::pause(), QByteArray(); }, 300, "did not finish in time"},
        {[] { return QByteArray(5000, 'x'); }, 10000, "more than 4096 bytes"},
    };
    for (const auto& c : cases) {
        const ChildRun run = runInChild(c.work, c.timeoutMs, 4096);
        EXPECT_TRUE(run.started && !run.completed && run.bytes.isEmpty()) << c.failure;
        EXPECT_TRUE(run.failure.contains(QString::fromLatin1(c.failure)))
            << run.failure.toStdString();
    }
}
