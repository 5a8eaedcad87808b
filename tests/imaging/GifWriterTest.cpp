#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modPictureSave.h"
#include "platform/Failure.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

namespace {

// The 9-bit codes of an 8-bit file of this writer, up to the end code.
std::vector<int> codesOf8Bit(const QByteArray& file) {
    QByteArray data;
    for (int at = 13 + 768 + 11, n = -1; n != 0; at += n + 1) {
        n = std::uint8_t(file[at]);
        data += file.mid(at + 1, n);
    }
    std::vector<int> codes;
    std::uint32_t buffer = 0;
    int bits = 0;
    for (const char byte : data) {
        buffer |= std::uint32_t(std::uint8_t(byte)) << bits;
        for (bits += 8; bits >= 9; bits -= 9, buffer >>= 9) {
            codes.push_back(int(buffer & 0x1FF));
            if (codes.back() == 257)
                return codes;
        }
    }
    return codes;
}

// giflib reads the file as the palette-mapped picture, the palette's colours in order.
void expectMatchesMapped(const QImage& picture, int bits, const QString& path) {
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok) << gif.error.toStdString();
    std::vector<QRgb> palette;
    EXPECT_EQ(gif.picture(), mappedPicture(picture, bits, &palette));
    palette.resize(std::size_t(1) << bits, qRgb(0, 0, 0)); // unused entries are zero
    EXPECT_EQ(gif.colours, palette);
}

} // namespace

TEST(GifWriter, APictureEndingAtAResetRepeatsItsLastCode) {
    // 254 different colours in a row: every pixel after the first adds a string, so the table
    // is full just as the picture ends.
    QImage picture(254, 1, QImage::Format_RGB32);
    for (int k = 0; k < 254; ++k)
        picture.setPixel(k, 0, qRgb(k % 8 * 32, k / 8 % 8 * 32, k / 64 * 32));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("reset.gif"));
    ASSERT_TRUE(SavePictureBoxImage(path, picture, 2));
    expectMatchesMapped(picture, 8, path);
    // A clear code, 253 codes, the flush, a clear code, the flush again, the end code.
    const std::vector<int> codes = codesOf8Bit(readFile(path));
    ASSERT_EQ(codes.size(), 1u + 253u + 4u);
    EXPECT_EQ(codes[0], 256);
    EXPECT_EQ(std::vector(codes.end() - 3, codes.end()), (std::vector{256, codes[254], 257}));
}

TEST(GifWriter, CommentBitsAndOverwrittenTails) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("c.gif"));
    writeFile(path, QByteArray(100000, 'x'));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(photoLike(20, 10), QStringLiteral("picPreview"), nullptr, path, bits);
    const QByteArray comment("picPreview Written by the GIF writer v01");
    const QByteArray bytes = readFile(path);
    EXPECT_EQ(bytes.size(), 100000); // the old file's tail stays behind the trailer
    EXPECT_EQ(bytes.back(), 'x');
    EXPECT_TRUE(bytes.contains(QByteArray("\x21\xFE\x28", 3) + comment + QByteArray("\0;", 2)));
    for (const auto& [given, expected] :
         {std::pair{16, 8}, {1, 8}, {6, 8}, {2, 8}, {0, 8}, {4, 4}, {8, 8}}) {
        bits = given;
        writer.Save(photoLike(12, 12), QStringLiteral("p"), nullptr, path, bits);
        expectMatchesMapped(photoLike(12, 12), expected, path);
        EXPECT_EQ(bits, expected) << given;
        EXPECT_EQ(std::uint8_t(readFile(path)[10]), 0xF0 | (expected - 1)) << given;
    }
}

TEST(GifWriter, FailuresCarryTheirNumbersAndTexts) {
    QTemporaryDir dir;
    const struct {
        QImage picture;
        QString path;
        std::uint32_t number;
        const char* text;
    } cases[] = {
        {photoLike(4, 4), QString(), 0x8004020DU, "Cannot Create Printer DC"},
        {QImage(), dir.filePath(QStringLiteral("e.gif")), 0x8004020EU, "Cannot Create DIBSection"},
        {photoLike(4, 4), dir.filePath(QStringLiteral("no/folder/x.gif")), 0x80040212U,
         "PictureBoxToGif function failed"},
    };
    for (const auto& c : cases) {
        cDIBSectionSave writer;
        int bits = 8;
        try {
            writer.Save(c.picture, QStringLiteral("p"), nullptr, c.path, bits);
            ADD_FAILURE() << "no failure for " << c.text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number(), std::int32_t(c.number));
            EXPECT_EQ(failure.source(), QStringLiteral("cDIBSectionSave.Save"));
            EXPECT_EQ(failure.description(), QString::fromLatin1(c.text));
        }
    }
}

namespace {
struct RecordingStatus : GifStatusSink {
    std::vector<std::pair<QString, QString>> lines;
    QImage shown;
    int ask(const QString&, int style, const QString&) override { return style; }
    void Clear() override {}
    void ShowLines(const QString& a, const QString& b) override { lines.emplace_back(a, b); }
    bool ShowPicture(const QImage& picture) override { return (shown = picture, true); }
};
} // namespace

TEST(GifWriter, ProgressGoesToTheStatusDisplayOrElseToTheSink) {
    QTemporaryDir dir;
    const QImage picture = photoLike(30, 12);
    RecordingStatus status;
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(picture, QStringLiteral("p"), &status, dir.filePath(QStringLiteral("s.gif")), bits);
    ASSERT_EQ(status.lines.size(), 36u);
    using Lines = std::pair<QString, QString>;
    EXPECT_EQ(status.lines[1], Lines("Line :1 of 12", "Create Palette: Stage 1 of 3"));
    EXPECT_EQ(status.lines[12], Lines("Line :1 of 12", "Apply Palette: Stage 2 of 3"));
    EXPECT_EQ(status.lines[35], Lines("Line :12 of 12", "Saving Gif file: Stage 3 of 3"));
    EXPECT_EQ(status.shown.convertToFormat(QImage::Format_RGB32), mappedPicture(picture, 8));

    // Without a status display: progress over the three stages, a pause after each written row.
    RecordingSink sink;
    cDIBSectionSave quietWriter(sink);
    quietWriter.Save(picture, QStringLiteral("p"), nullptr, dir.filePath(QStringLiteral("u.gif")),
                     bits);
    expectMatchesMapped(picture, 8, dir.filePath(QStringLiteral("u.gif")));
    EXPECT_EQ(sink.pauses, 12);
    ASSERT_EQ(sink.progressReports.size(), 36u);
    EXPECT_EQ(sink.progressReports[13], std::pair(13, 36)); // a first row counts as line 1
    EXPECT_EQ(sink.progressReports.back(), std::pair(36, 36));
    EXPECT_TRUE(sink.questions.empty());
}

TEST(GifWriter, InterlacedTransparentAndTextExtensions) {
    IndexedBitmap bitmap; // 13 by 21 at 8 bits, rows of 16 bytes, bottom row first
    bitmap.header.biWidth = 13;
    bitmap.header.biHeight = 21;
    bitmap.colourTable[1] = {255, 255, 255, 0};
    bitmap.colourTable[2] = {0, 0, 255, 0}; // red
    for (int at = 0; at < 16 * 21; ++at)
        bitmap.bits.push_back(std::uint8_t((at % 16 + 2 * (at / 16)) % 3));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("i.gif"));
    const GifOptions options{8, true, 0x0000FF, {2, 3, 4, 2, 8, 16, 0xFFFFFF, 0, "hello"}};
    ASSERT_FALSE(cDIBSectionSave().PictureBoxToGif(bitmap, QStringLiteral("p"), path, options));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok) << gif.error.toStdString();
    EXPECT_TRUE(gif.interlaced && gif.hasPlainText);
    EXPECT_EQ(gif.transparentIndex, 2);
    EXPECT_EQ(std::pair(gif.screenWidth, gif.screenHeight), std::pair(2 + 4 * 8, 3 + 2 * 16));
    for (int y = 0; y < 21; ++y)
        for (int x = 0; x < 13; ++x)
            ASSERT_EQ(gif.indices[std::size_t(y * 13 + x)], (x + 2 * (20 - y)) % 3)
                << x << "," << y;
}

// The palette, the diffusion and the coder together give exactly the bytes the program has
// always written for these pictures, whatever is done to make them faster.
TEST(GifWriter, KnownPicturesKeepTheirExactBytes) {
    QTemporaryDir dir;
    const struct {
        int width, height;
        const char* sha256;
    } cases[] = {
        {160, 120, "7c0e92491109e6f04579103ef2671e086d67ae722d5bb38b6fbd18b5dc9e878b"},
        {333, 77, "759ac12f4536b55c664499380dcc6e11d44d865288bf5e8fbcad4a89edcb1d45"},
    };
    for (const auto& c : cases) {
        // Many colours made by integer arithmetic alone, so that any program can make them.
        QImage picture(c.width, c.height, QImage::Format_RGB32);
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < c.width; ++x)
                picture.setPixel(x, y,
                                 qRgb((x * 7 + y * 3 + ((x * y) % 13) * 5) & 255,
                                      (x * x + y * 11 + (x * y * x) % 23) % 256,
                                      (((x ^ y) * 5) + (x * y * 31) % 17 + (y * y) % 29) & 255));
        const QString path = dir.filePath(QStringLiteral("known%1.gif").arg(c.width));
        ASSERT_TRUE(SavePictureBoxImage(path, picture, 2));
        expectMatchesMapped(picture, 8, path);
        EXPECT_EQ(QCryptographicHash::hash(readFile(path), QCryptographicHash::Sha256).toHex(),
                  QByteArray(c.sha256))
            << c.width << "x" << c.height;
    }
}
