#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modFreeImage.h"
#include "imaging/modPictureLoad.h"
#include "platform/modText.h"
#include "support/ScriptedResponder.h"

#include <FreeImage.h>
#include <QBuffer>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

namespace {

bool saveWithFreeImage(const QImage& picture, const QString& path, FREE_IMAGE_FORMAT format,
                       int bpp = 24) {
    QImage rgb = picture.convertToFormat(bpp == 32 ? QImage::Format_ARGB32 : QImage::Format_RGB32);
    FIBITMAP* dib = FreeImage_ConvertFromRawBits(rgb.bits(), rgb.width(), rgb.height(),
                                                 int(rgb.bytesPerLine()), 32, FI_RGBA_RED_MASK,
                                                 FI_RGBA_GREEN_MASK, FI_RGBA_BLUE_MASK, TRUE);
    if (!dib)
        return false;
    FIBITMAP* out = bpp == 32 ? dib : FreeImage_ConvertTo24Bits(dib);
    const bool ok = FreeImage_Save(format, out, QFile::encodeName(path).constData(), 0);
    if (out != dib)
        FreeImage_Unload(out);
    FreeImage_Unload(dib);
    return ok;
}

QByteArray encoded(const QImage& picture, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    picture.save(&buffer, format);
    return bytes;
}

class PictureLoad : public testing::Test {
protected:
    QTemporaryDir dir;
    ScriptedResponder responder;
    QImage picture = photoLike(37, 23);
    QString path(const char* name) const { return dir.filePath(QString::fromLatin1(name)); }
};

} // namespace

TEST_F(PictureLoad, ReadsTheFormatsOfBothRoads) {
    writeFile(path("a.bmp"), encoded(picture, "BMP"));
    writeFile(path("a.png"), encoded(picture, "PNG"));
    writeFile(path("a.jpg"), encoded(picture, "JPG"));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(picture, QStringLiteral("p"), nullptr, path("a.gif"), bits);
    ASSERT_TRUE(saveWithFreeImage(picture, path("a.tif"), FIF_TIFF));
    ASSERT_TRUE(saveWithFreeImage(picture, path("a.tga"), FIF_TARGA));
    const QImage rgb = picture.convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(LoadPictureFile(path("a.bmp")).convertToFormat(QImage::Format_RGB32), rgb);
    EXPECT_EQ(LoadPictureFile(path("a.png")), rgb);
    EXPECT_EQ(LoadPictureFile(path("a.tif")), rgb);
    EXPECT_EQ(LoadPictureFile(path("a.tga")), rgb);
    const QImage jpeg = LoadPictureFile(path("a.jpg"));
    EXPECT_EQ(jpeg.size(), picture.size());
    EXPECT_EQ(LoadPictureFile(path("a.gif")).size(), picture.size());
    EXPECT_TRUE(responder.boxes.empty());
}

TEST_F(PictureLoad, LongExtensionsAndUpperCaseTakeTheirRoads) {
    writeFile(path("b.JPEG"), encoded(picture, "JPG"));
    ASSERT_TRUE(saveWithFreeImage(picture, path("b.TIFF"), FIF_TIFF));
    EXPECT_FALSE(LoadPictureFile(path("b.JPEG")).isNull());
    EXPECT_FALSE(LoadPictureFile(path("b.TIFF")).isNull());
    // The platform road reads by content: a PNG named .JPG loads there.
    writeFile(path("c.JPG"), encoded(picture, "PNG"));
    EXPECT_FALSE(LoadPictureFile(path("c.JPG")).isNull());
    // FreeImage is told the format by the name: a PNG named .tga does not load, silently.
    writeFile(path("c.tga"), encoded(picture, "PNG"));
    EXPECT_TRUE(LoadPictureFile(path("c.tga")).isNull());
    EXPECT_TRUE(responder.boxes.empty());
}

TEST_F(PictureLoad, NoDotOrAnUnknownExtensionGivesNothingSilently) {
    writeFile(path("plain"), encoded(picture, "PNG"));
    writeFile(path("d.webp"), encoded(picture, "PNG"));
    EXPECT_TRUE(LoadPictureFile(path("plain")).isNull());
    EXPECT_TRUE(LoadPictureFile(path("d.webp")).isNull());
    EXPECT_TRUE(LoadPictureFile(path("missing.xyz")).isNull());
    EXPECT_TRUE(responder.boxes.empty());
}

TEST_F(PictureLoad, MissingOrDamagedPlatformPicturesShowTheNoFileBox) {
    setTextLookup([](const QString& key) {
        return key == QLatin1String("STR_NO_FILE_FOUND") ? QStringLiteral("File not found:") : key;
    });
    const QByteArray jpeg = encoded(picture, "JPG");
    writeFile(path("short.jpg"), jpeg.left(jpeg.size() / 2));
    writeFile(path("junk.jpg"), QByteArray(300, '\x55'));
    writeFile(path("header.jpg"), jpeg.left(20));
    const QByteArray bmp = encoded(picture, "BMP");
    writeFile(path("short.bmp"), bmp.left(40));
    writeFile(path("empty.gif"), QByteArray());
    for (const char* name :
         {"nothere.bmp", "short.jpg", "junk.jpg", "header.jpg", "short.bmp", "empty.gif"}) {
        responder.boxes.clear();
        EXPECT_TRUE(LoadPictureFile(path(name)).isNull()) << name;
        ASSERT_EQ(responder.boxes.size(), 1u) << name;
        EXPECT_EQ(responder.boxes[0].text,
                  QStringLiteral("File not found:\n%1\n").arg(QString::fromLatin1(name)));
        EXPECT_EQ(responder.boxes[0].style, int(Vb::Information));
    }
    setTextLookup(nullptr);
}

TEST_F(PictureLoad, BrokenFreeImagePicturesGiveNothingAndRecordTheFault) {
    const QByteArray png = encoded(picture, "PNG");
    writeFile(path("short.png"), png.left(png.size() / 3));
    writeFile(path("junk.png"), QByteArray(500, '\x7f'));
    ASSERT_TRUE(saveWithFreeImage(picture, path("whole.tif"), FIF_TIFF));
    const QByteArray tiff = readFile(path("whole.tif"));
    writeFile(path("short.tif"), tiff.left(tiff.size() / 2));
    writeFile(path("head.tif"), tiff.left(16));
    testing::internal::CaptureStderr();
    for (const char* name : {"short.png", "junk.png", "short.tif", "head.tif", "nothere.png"}) {
        clearFreeImageError();
        const QImage loaded = LoadPictureFile(path(name));
        // A truncated file may still give a partial picture; it must never be a crash, and a
        // file that cannot be read leaves its reason behind.
        if (loaded.isNull()) {
            EXPECT_FALSE(lastFreeImageError().isEmpty()) << name;
        }
    }
    const std::string printed = testing::internal::GetCapturedStderr();
    EXPECT_EQ(printed.find("TIFF"), std::string::npos) << printed;
    EXPECT_TRUE(responder.boxes.empty());
}

TEST_F(PictureLoad, FreeImageBitmapsOfEveryDepthConvert) {
    QImage small(5, 3, QImage::Format_RGB32);
    for (int y = 0; y < 3; ++y)
        for (int x = 0; x < 5; ++x)
            small.setPixel(x, y, (x + y) % 2 ? qRgb(255, 255, 255) : qRgb(0, 0, 0));
    // Palette-based and two-colour PNGs.
    writeFile(path("p8.png"), encoded(small.convertToFormat(QImage::Format_Indexed8), "PNG"));
    writeFile(path("p1.png"), encoded(small.convertToFormat(QImage::Format_Mono), "PNG"));
    EXPECT_EQ(LoadPictureFile(path("p8.png")), small);
    EXPECT_EQ(LoadPictureFile(path("p1.png")), small);
    // Alpha is dropped: the colour channels stay as stored.
    QImage alpha(2, 1, QImage::Format_ARGB32);
    alpha.setPixel(0, 0, qRgba(10, 20, 30, 0));
    alpha.setPixel(1, 0, qRgba(200, 100, 50, 255));
    writeFile(path("a.png"), encoded(alpha, "PNG"));
    const QImage loaded = LoadPictureFile(path("a.png"));
    ASSERT_FALSE(loaded.isNull());
    EXPECT_EQ(loaded.pixel(0, 0), qRgb(10, 20, 30));
    EXPECT_EQ(loaded.pixel(1, 0), qRgb(200, 100, 50));
}

TEST(FreeImageBridge, ConversionFailuresRecordTheirTexts) {
    QImage out(2, 2, QImage::Format_RGB32);
    EXPECT_FALSE(FreeImage_BMP_From_DIB(nullptr, out));
    EXPECT_TRUE(out.isNull());
    EXPECT_EQ(lastFreeImageError(),
              QStringLiteral("[FreeImage_BMP_From_DIB] No DIB specified to convert"));
    // A 48-bit bitmap is nothing a device bitmap can be made from.
    FIBITMAP* wide = FreeImage_AllocateT(FIT_RGB16, 4, 4);
    ASSERT_NE(wide, nullptr);
    EXPECT_FALSE(FreeImage_BMP_From_DIB(wide, out));
    EXPECT_TRUE(lastFreeImageError().startsWith(
        QStringLiteral("[FreeImage_BMP_From_DIB] CreateDIBitmap failed to create the BITMAP from "
                       "the DIB reporting error code ")));
    FreeImage_Unload(wide);
    RecordFreeImageError(QStringLiteral("first"), false);
    RecordFreeImageError(QStringLiteral("second"), true);
    EXPECT_EQ(lastFreeImageError(), QStringLiteral("first"));
    RecordFreeImageError(QStringLiteral("third"), false);
    EXPECT_EQ(lastFreeImageError(), QStringLiteral("third"));
}

TEST_F(PictureLoad, AHeaderClaimingAHugePictureIsRefused) {
    // A Targa header of 60000 by 60000 pixels at 24 bits and no pixel data.
    QByteArray tga(18, '\0');
    tga[2] = 2;
    tga[12] = char(0x60);
    tga[13] = char(0xEA);
    tga[14] = char(0x60);
    tga[15] = char(0xEA);
    tga[16] = 24;
    writeFile(path("huge.tga"), tga);
    clearFreeImageError();
    EXPECT_TRUE(LoadPictureFile(path("huge.tga")).isNull());
    EXPECT_TRUE(lastFreeImageError().contains(QStringLiteral("claims 3600000000 pixels")))
        << lastFreeImageError().toStdString();
    EXPECT_TRUE(responder.boxes.empty());
}

TEST_F(PictureLoad, APictureThatBreaksTheDecoderCostsOnlyThePicture) {
    // An RLE Photoshop file whose first run overflows its row: FreeImage writes past its
    // buffer on it. The program must go on without the picture.
    const QByteArray psd =
        QByteArray::fromHex("3842505300010000000000000003000000040000000400080003000000000000000000"
                            "000000000100000000"
                            "00000003000000040000000400080003000000000000000000000000") +
        QByteArray(90, '\x40');
    writeFile(path("broken.psd"), psd);
    clearFreeImageError();
    EXPECT_TRUE(LoadPictureFile(path("broken.psd")).isNull());
    EXPECT_FALSE(lastFreeImageError().isEmpty());
    EXPECT_TRUE(responder.boxes.empty());
    // And the next picture loads as usual.
    writeFile(path("fine.png"), encoded(picture, "PNG"));
    EXPECT_EQ(LoadPictureFile(path("fine.png")), picture.convertToFormat(QImage::Format_RGB32));
}
