#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modPictureSave.h"
#include "platform/Failure.h"

#include <QCryptographicHash>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace imagingtest;

namespace {

struct Saved {
    QByteArray bytes;
    DecodedGif gif;
};

Saved saveGif(const QTemporaryDir& dir, const QImage& picture, int bits,
              const QString& name = QStringLiteral("picture.gif")) {
    const QString path = dir.filePath(name);
    cDIBSectionSave writer;
    writer.Save(picture, QStringLiteral("picDownload"), nullptr, path, bits);
    return {readFile(path), decodeGif(path)};
}

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

void expectMatchesMapped(const QImage& picture, int bits, const Saved& saved) {
    ASSERT_TRUE(saved.gif.ok) << saved.gif.error.toStdString();
    std::vector<QRgb> palette;
    const QImage mapped = mappedPicture(picture, bits, &palette);
    ASSERT_EQ(saved.gif.colours.size(), std::size_t(1) << bits);
    palette.resize(saved.gif.colours.size(), qRgb(0, 0, 0)); // unused entries are zero
    EXPECT_EQ(saved.gif.colours, palette);
    EXPECT_EQ(saved.gif.picture(), mapped);
}

} // namespace

TEST(GifWriter, HeadersOfEightAndFourBitFiles) {
    QTemporaryDir dir;
    Saved saved = saveGif(dir, photoLike(160, 160), 8);
    EXPECT_EQ(saved.bytes.left(13), QByteArray("GIF89a\xA0\x00\xA0\x00\xF7\x00\x00", 13));
    EXPECT_EQ(saved.bytes.mid(13 + 768, 11), QByteArray("\x2C\0\0\0\0\xA0\0\xA0\0\0\x08", 11));
    EXPECT_EQ(saved.bytes.back(), ';');
    saved = saveGif(dir, photoLike(160, 160), 4);
    EXPECT_EQ(std::uint8_t(saved.bytes[10]), 0xF3);
    EXPECT_EQ(saved.bytes.mid(13 + 48, 11), QByteArray("\x2C\0\0\0\0\xA0\0\xA0\0\0\x04", 11));
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 48 + 12]) & 0x1F, 16); // the clear code first
}

TEST(GifWriter, EveryFileDecodesToThePaletteMappedPicture) {
    QTemporaryDir dir;
    const struct {
        QImage picture;
        int bits;
    } cases[] = {
        {photoLike(160, 120), 8}, {photoLike(1, 1), 8},     {photoLike(1, 40), 8},
        {photoLike(40, 1), 8},    {noise(120, 90), 8},      {photoLike(333, 17, 6), 8},
        {photoLike(160, 120), 4}, {photoLike(10, 6, 4), 4}, {photoLike(7, 3), 4},
        {noise(64, 48, 9), 4},    {photoLike(2, 9), 4},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message()
                     << c.picture.width() << "x" << c.picture.height() << " bits " << c.bits);
        expectMatchesMapped(c.picture, c.bits,
                            saveGif(dir, c.picture, c.bits, QStringLiteral("c%1.gif").arg(n++)));
    }
}

TEST(GifWriter, APictureEndingAtAResetRepeatsItsLastCode) {
    // 254 different colours in a row: every pixel after the first adds a string, so the table
    // is full just as the picture ends.
    QImage picture(254, 1, QImage::Format_RGB32);
    for (int k = 0; k < 254; ++k)
        picture.setPixel(k, 0, qRgb(k % 8 * 32, k / 8 % 8 * 32, k / 64 * 32));
    QTemporaryDir dir;
    const Saved saved = saveGif(dir, picture, 8);
    expectMatchesMapped(picture, 8, saved);
    // A clear code, 253 codes, the flush, a clear code, the flush again, the end code.
    const std::vector<int> codes = codesOf8Bit(saved.bytes);
    ASSERT_EQ(codes.size(), 1u + 253u + 1u + 1u + 1u + 1u);
    const std::size_t n = codes.size();
    EXPECT_EQ(codes[0], 256);
    EXPECT_EQ(codes[n - 3], 256);
    EXPECT_EQ(codes[n - 2], codes[n - 4]); // the stale pixel written again
}

TEST(GifWriter, CommentBitsAndOverwrittenTails) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("c.gif"));
    writeFile(path, QByteArray(100000, 'x'));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(photoLike(20, 10), QStringLiteral("picPreview"), nullptr, path, bits);
    const QByteArray comment("picPreview Written by the GIF writer v01");
    const QByteArray block = QByteArray("\x21\xFE", 2) + char(comment.size()) + comment +
                             QByteArray(1, '\0') + QByteArray(1, ';');
    const QByteArray bytes = readFile(path);
    EXPECT_EQ(bytes.size(), 100000); // the old file's tail stays behind the trailer
    EXPECT_EQ(bytes.back(), 'x');
    EXPECT_NE(bytes.indexOf(block), -1);
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok);
    EXPECT_EQ(gif.comments, std::vector<QByteArray>{comment});

    for (const auto& [given, expected] :
         {std::pair{16, 8}, {1, 8}, {6, 8}, {2, 8}, {0, 8}, {4, 4}, {8, 8}}) {
        bits = given;
        writer.Save(photoLike(12, 12), QStringLiteral("p"), nullptr, path, bits);
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
    bool showWorks = true;
    int ask(const QString&, int style, const QString&) override { return style; }
    void Clear() override {}
    void ShowLines(const QString& a, const QString& b) override { lines.emplace_back(a, b); }
    bool ShowPicture(const QImage& picture) override {
        shown = picture;
        return showWorks;
    }
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
    const std::pair<QString, QString> expected[] = {
        {"Line :1 of 12", "Create Palette: Stage 1 of 3"},
        {"Line :1 of 12", "Create Palette: Stage 1 of 3"},
        {"Line :1 of 12", "Apply Palette: Stage 2 of 3"},
        {"Line :12 of 12", "Saving Gif file: Stage 3 of 3"}};
    for (const auto& [at, line] : {std::pair{0, 0}, {1, 1}, {12, 2}, {35, 3}})
        EXPECT_EQ(status.lines[std::size_t(at)], expected[line]) << at;
    EXPECT_EQ(status.shown.convertToFormat(QImage::Format_RGB32), mappedPicture(picture, 8));
    status.showWorks = false;
    EXPECT_THROW(writer.Save(picture, QStringLiteral("p"), &status,
                             dir.filePath(QStringLiteral("t.gif")), bits),
                 Failure);

    // Without a status display: progress over the three stages, a pause after each written row.
    RecordingSink sink;
    cDIBSectionSave quietWriter(sink);
    quietWriter.Save(picture, QStringLiteral("p"), nullptr, dir.filePath(QStringLiteral("u.gif")),
                     bits);
    EXPECT_EQ(sink.pauses, 12);
    ASSERT_EQ(sink.progressReports.size(), 36u);
    EXPECT_EQ(sink.progressReports[13], std::pair(13, 36)); // a first row counts as line 1
    EXPECT_EQ(sink.progressReports.back(), std::pair(36, 36));
    EXPECT_TRUE(sink.questions.empty());
}

TEST(GifWriter, InterlacedTransparentAndTextExtensions) {
    IndexedBitmap bitmap;
    const int width = 13, height = 21, stride = 16;
    bitmap.header.biWidth = width;
    bitmap.header.biHeight = height;
    bitmap.header.biBitCount = 8;
    bitmap.colourTable[1] = {255, 255, 255, 0};
    bitmap.colourTable[2] = {0, 0, 255, 0}; // red
    bitmap.bits.assign(std::size_t(stride * height), 0);
    for (int y = 0; y < height; ++y) // buffer rows: bottom first
        for (int x = 0; x < width; ++x)
            bitmap.bits[std::size_t(y * stride + x)] = std::uint8_t((x + 2 * y) % 3);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("i.gif"));
    cDIBSectionSave writer;
    const GifOptions options{8, true, 0x0000FF, {2, 3, 4, 2, 8, 16, 0xFFFFFF, 0, "hello"}};
    ASSERT_FALSE(writer.PictureBoxToGif(bitmap, QStringLiteral("p"), path, options));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok) << gif.error.toStdString();
    EXPECT_TRUE(gif.interlaced);
    EXPECT_EQ(gif.transparentIndex, 2);
    EXPECT_TRUE(gif.hasPlainText);
    EXPECT_EQ(gif.screenWidth, 2 + 4 * 8);
    EXPECT_EQ(gif.screenHeight, 3 + 2 * 16);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            ASSERT_EQ(gif.indices[std::size_t(y * width + x)], (x + 2 * (height - 1 - y)) % 3)
                << x << "," << y;
}

TEST(GifWriter, AnOddFourBitWidthReadsShortRows) {
    // With 9 pixels at 4 bits the row length is taken as 4 bytes, less than a row needs, so
    // the rows are read at 4-byte steps; the stream stays a valid GIF.
    IndexedBitmap bitmap;
    bitmap.header.biWidth = 9;
    bitmap.header.biHeight = 3;
    bitmap.header.biBitCount = 4;
    bitmap.bits = {0x12, 0x34, 0x56, 0x78, 0x9A, 0,    0,    0,    0xBC, 0xDE, 0xF0, 0x12,
                   0x34, 0,    0,    0,    0x11, 0x22, 0x33, 0x44, 0x55, 0,    0,    0};
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("o.gif"));
    cDIBSectionSave writer;
    ASSERT_FALSE(writer.PictureBoxToGif(bitmap, QStringLiteral("p"), path, GifOptions{4}));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok);
    // Top row = buffer row 2, read from byte 8.
    const std::vector<std::uint8_t> top(gif.indices.begin(), gif.indices.begin() + 9);
    EXPECT_EQ(top, (std::vector<std::uint8_t>{0xB, 0xC, 0xD, 0xE, 0xF, 0x0, 0x1, 0x2, 0x3}));
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
        const QByteArray bytes = readFile(path);
        EXPECT_TRUE(decodeGif(path).ok);
        EXPECT_EQ(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex(),
                  QByteArray(c.sha256))
            << c.width << "x" << c.height;
    }
}
