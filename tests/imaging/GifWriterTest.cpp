#include "ImagingTestUtil.h"
#include "imaging/cDIBSectionSave.h"
#include "imaging/modPictureSave.h"
#include "platform/Failure.h"

#include <QCryptographicHash>
#include <QDir>
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

// The LZW data of an 8-bit file of this writer (no extension before the image), its codes read
// 9 bits at a time up to the end code, and the sub-block sizes.
struct CodeStream {
    std::vector<int> codes;
    std::vector<int> blockSizes;
    std::size_t dataBytes = 0;
};

CodeStream codesOf8Bit(const QByteArray& file) {
    CodeStream out;
    std::size_t at = 13 + 768 + 10;
    EXPECT_EQ(std::uint8_t(file[int(at)]), 8); // minimum code size
    ++at;
    QByteArray data;
    while (true) {
        const int n = std::uint8_t(file[int(at)]);
        ++at;
        out.blockSizes.push_back(n);
        if (n == 0)
            break;
        data += file.mid(int(at), n);
        at += std::size_t(n);
    }
    out.dataBytes = std::size_t(data.size());
    std::uint32_t buffer = 0;
    int bits = 0;
    for (const char byte : data) {
        buffer |= std::uint32_t(std::uint8_t(byte)) << bits;
        bits += 8;
        while (bits >= 9) {
            const int code = int(buffer & 0x1FF);
            buffer >>= 9;
            bits -= 9;
            out.codes.push_back(code);
            if (code == 257)
                return out;
        }
    }
    return out;
}

// A sequence over 16 symbols in which every two neighbours form a pair seen nowhere else.
std::vector<int> deBruijn16() {
    std::vector<int> a(3, 0), sequence;
    std::function<void(int, int)> db = [&](int t, int p) {
        if (t > 2) {
            if (2 % p == 0)
                for (int j = 1; j <= p; ++j)
                    sequence.push_back(a[std::size_t(j)]);
        } else {
            a[std::size_t(t)] = a[std::size_t(t - p)];
            db(t + 1, p);
            for (int j = a[std::size_t(t - p)] + 1; j < 16; ++j) {
                a[std::size_t(t)] = j;
                db(t + 1, t);
            }
        }
    };
    db(1, 1);
    sequence.push_back(sequence.front());
    return sequence;
}

QRgb symbolColour(int symbol) {
    static const int levels[4] = {0, 85, 170, 255};
    return qRgb(levels[symbol % 4], levels[symbol / 4], 0);
}

void expectMatchesMapped(const QImage& picture, int bits, const Saved& saved) {
    ASSERT_TRUE(saved.gif.ok) << saved.gif.error.toStdString();
    std::vector<QRgb> palette;
    const QImage mapped = mappedPicture(picture, bits, &palette);
    ASSERT_EQ(saved.gif.width, picture.width());
    ASSERT_EQ(saved.gif.height, picture.height());
    ASSERT_EQ(saved.gif.colours.size(), std::size_t(1) << bits);
    for (std::size_t i = 0; i < saved.gif.colours.size(); ++i)
        EXPECT_EQ(saved.gif.colours[i] & 0xFFFFFF, i < palette.size() ? palette[i] & 0xFFFFFF : 0u)
            << i;
    EXPECT_EQ(saved.gif.picture(), mapped);
}

} // namespace

TEST(GifWriter, HeaderOfAnEightBitPicture) {
    QTemporaryDir dir;
    const Saved saved = saveGif(dir, photoLike(160, 160), 8);
    const QByteArray expected("GIF89a\xA0\x00\xA0\x00\xF7\x00\x00", 13);
    EXPECT_EQ(saved.bytes.left(13), expected);
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 768]), 44);
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 768 + 9]), 0); // not interlaced
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 768 + 10]), 8);
    EXPECT_EQ(std::uint8_t(saved.bytes.back()), 59);
}

TEST(GifWriter, HeaderOfAFourBitPicture) {
    QTemporaryDir dir;
    const Saved saved = saveGif(dir, photoLike(160, 160), 4);
    EXPECT_EQ(std::uint8_t(saved.bytes[10]), 0xF3);
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 48]), 44); // 48 bytes of colour table
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 48 + 10]), 4);
    // The first code is the clear code, 16 in 5 bits.
    EXPECT_EQ(std::uint8_t(saved.bytes[13 + 48 + 12]) & 0x1F, 16);
    expectMatchesMapped(photoLike(160, 160), 4, saved);
}

TEST(GifWriter, EveryFileDecodesToThePaletteMappedPicture) {
    QTemporaryDir dir;
    const struct {
        QImage picture;
        int bits;
    } cases[] = {
        {photoLike(160, 120), 8}, {photoLike(1, 1), 8},     {photoLike(1, 40), 8},
        {photoLike(40, 1), 8},    {photoLike(7, 5, 2), 8},  {noise(120, 90), 8},
        {photoLike(160, 120), 4}, {photoLike(10, 6, 4), 4}, {photoLike(7, 3), 4},
        {noise(64, 48, 9), 4},    {photoLike(2, 9), 4},     {photoLike(333, 17, 6), 8},
    };
    int n = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << n << " " << c.picture.width() << "x"
                                        << c.picture.height() << " bits " << c.bits);
        expectMatchesMapped(c.picture, c.bits,
                            saveGif(dir, c.picture, c.bits, QStringLiteral("c%1.gif").arg(n++)));
    }
}

TEST(GifWriter, CodesAreNineBitsWithAClearFirstAndAFlushBeforeEachClear) {
    QTemporaryDir dir;
    for (const QImage& picture : {photoLike(160, 120), noise(100, 100, 3)}) {
        const Saved saved = saveGif(dir, picture, 8);
        ASSERT_TRUE(saved.gif.ok);
        const CodeStream stream = codesOf8Bit(saved.bytes);
        ASSERT_FALSE(stream.codes.empty());
        EXPECT_EQ(stream.codes.front(), 256);
        EXPECT_EQ(stream.codes.back(), 257);
        // Between two clears at most 253 strings are added, so at most 254 codes stand.
        int sinceClear = 0, clears = 0;
        for (std::size_t i = 1; i < stream.codes.size(); ++i) {
            if (stream.codes[i] == 256) {
                EXPECT_EQ(sinceClear, 254) << i; // a reset comes after exactly 253 additions
                ++clears;
                sinceClear = 0;
            } else {
                ++sinceClear;
                EXPECT_LT(stream.codes[i], 511);
            }
        }
        EXPECT_GT(clears, 0);
        // One byte more than the codes fill: the last bits, or a surplus zero byte.
        EXPECT_EQ(stream.dataBytes, stream.codes.size() * 9 / 8 + 1);
        for (std::size_t i = 0; i + 2 < stream.blockSizes.size(); ++i)
            EXPECT_EQ(stream.blockSizes[i], 255);
        EXPECT_EQ(stream.blockSizes.back(), 0);
    }
}

TEST(GifWriter, APictureEndingAtAResetRepeatsItsLastCode) {
    const std::vector<int> symbols = deBruijn16();
    QImage picture(254, 1, QImage::Format_RGB32);
    for (int x = 0; x < 254; ++x)
        picture.setPixel(x, 0, symbolColour(symbols[std::size_t(x)]));
    QTemporaryDir dir;
    const Saved saved = saveGif(dir, picture, 8);
    expectMatchesMapped(picture, 8, saved);
    const CodeStream stream = codesOf8Bit(saved.bytes);
    ASSERT_GE(stream.codes.size(), 5u);
    const std::size_t n = stream.codes.size();
    EXPECT_EQ(stream.codes[n - 1], 257);
    EXPECT_EQ(stream.codes[n - 3], 256);
    EXPECT_EQ(stream.codes[n - 2], stream.codes[n - 4]); // the stale pixel written again
    EXPECT_EQ(n, 1u + 253u + 1u + 1u + 1u + 1u);
}

TEST(GifWriter, CommentFollowsTheImageAndNamesTheWriter) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("c.gif"));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(photoLike(20, 10), QStringLiteral("picPreview"), nullptr, path, bits);
    const QByteArray bytes = readFile(path);
    const QByteArray comment("picPreview Written by the GIF writer v01");
    const QByteArray block = QByteArray("\x21\xFE", 2) + char(comment.size()) + comment +
                             QByteArray(1, '\0') + QByteArray(1, ';');
    EXPECT_TRUE(bytes.endsWith(block));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok);
    ASSERT_EQ(gif.comments.size(), 1u);
    EXPECT_EQ(gif.comments[0], comment);
}

TEST(GifWriter, BitsAreCorrectedToFourOrEight) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("b.gif"));
    for (const auto& [given, expected] :
         {std::pair{16, 8}, {1, 8}, {6, 8}, {2, 8}, {0, 8}, {4, 4}, {8, 8}}) {
        cDIBSectionSave writer;
        int bits = given;
        writer.Save(photoLike(12, 12), QStringLiteral("p"), nullptr, path, bits);
        EXPECT_EQ(bits, expected) << given;
        EXPECT_EQ(std::uint8_t(readFile(path)[10]), 0xF0 | (expected - 1)) << given;
    }
}

TEST(GifWriter, OverwritingALargerFileLeavesItsTail) {
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("old.gif"));
    writeFile(path, QByteArray(100000, 'x'));
    cDIBSectionSave writer;
    int bits = 8;
    writer.Save(photoLike(16, 16), QStringLiteral("p"), nullptr, path, bits);
    const QByteArray bytes = readFile(path);
    EXPECT_EQ(bytes.size(), 100000);
    EXPECT_TRUE(bytes.startsWith("GIF89a"));
    EXPECT_EQ(bytes.back(), 'x');
    EXPECT_TRUE(decodeGif(path).ok);
}

TEST(GifWriter, FailuresCarryTheirNumbersAndTexts) {
    QTemporaryDir dir;
    auto expectFailure = [](auto action, std::int32_t number, const char* text) {
        try {
            action();
            ADD_FAILURE() << "no failure for " << text;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.number(), number);
            EXPECT_EQ(failure.source(), QStringLiteral("cDIBSectionSave.Save"));
            EXPECT_EQ(failure.description(), QString::fromLatin1(text));
        }
    };
    int bits = 8;
    cDIBSectionSave writer;
    expectFailure([&] { writer.Save(photoLike(4, 4), "p", nullptr, QString(), bits); },
                  std::int32_t(0x8004020DU), "Cannot Create Printer DC");
    expectFailure(
        [&] { writer.Save(QImage(), "p", nullptr, dir.filePath(QStringLiteral("e.gif")), bits); },
        std::int32_t(0x8004020EU), "Cannot Create DIBSection");
    const QString nowhere = dir.filePath(QStringLiteral("missing/folder/x.gif"));
    expectFailure([&] { writer.Save(photoLike(4, 4), "p", nullptr, nowhere, bits); },
                  std::int32_t(0x80040212U), "PictureBoxToGif function failed");
    EXPECT_NE(writer.lastErrorNumber(), 0);
}

namespace {
struct RecordingStatus : GifStatusSink {
    std::vector<std::pair<QString, QString>> lines;
    int clears = 0;
    QImage shown;
    bool showWorks = true;
    void Clear() override { ++clears; }
    void ShowLines(const QString& a, const QString& b) override { lines.emplace_back(a, b); }
    bool ShowPicture(const QImage& picture) override {
        shown = picture;
        return showWorks;
    }
};
} // namespace

TEST(GifWriter, StatusShowsEachRowOfTheThreeStagesAndTheResult) {
    QTemporaryDir dir;
    RecordingStatus status;
    cDIBSectionSave writer;
    int bits = 8;
    const QImage picture = photoLike(30, 12);
    writer.Save(picture, QStringLiteral("p"), &status, dir.filePath(QStringLiteral("s.gif")), bits);
    ASSERT_EQ(status.lines.size(), 36u);
    EXPECT_EQ(status.lines[0].first, QStringLiteral("Line :1 of 12"));
    EXPECT_EQ(status.lines[0].second, QStringLiteral("Create Palette: Stage 1 of 3"));
    EXPECT_EQ(status.lines[1].first, QStringLiteral("Line :1 of 12"));
    EXPECT_EQ(status.lines[11].first, QStringLiteral("Line :11 of 12"));
    EXPECT_EQ(status.lines[12].second, QStringLiteral("Apply Palette: Stage 2 of 3"));
    EXPECT_EQ(status.lines[35].first, QStringLiteral("Line :12 of 12"));
    EXPECT_EQ(status.lines[35].second, QStringLiteral("Saving Gif file: Stage 3 of 3"));
    EXPECT_EQ(status.shown.convertToFormat(QImage::Format_RGB32), mappedPicture(picture, 8));

    status.showWorks = false;
    try {
        writer.Save(picture, QStringLiteral("p"), &status, dir.filePath(QStringLiteral("t.gif")),
                    bits);
        ADD_FAILURE() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.number(), std::int32_t(0x80040213U));
        EXPECT_EQ(failure.description(), QStringLiteral("Blit to our status PictureBox failed"));
    }
}

TEST(GifWriter, InterlacedTransparentAndTextExtensions) {
    IndexedBitmap bitmap;
    const int width = 13, height = 21, stride = 16;
    bitmap.header.biWidth = width;
    bitmap.header.biHeight = height;
    bitmap.header.biBitCount = 8;
    bitmap.colourTable[0] = {0, 0, 0, 0};
    bitmap.colourTable[1] = {255, 255, 255, 0};
    bitmap.colourTable[2] = {0, 0, 255, 0}; // red
    bitmap.bits.assign(std::size_t(stride * height), 0);
    for (int y = 0; y < height; ++y) // buffer rows: bottom first
        for (int x = 0; x < width; ++x)
            bitmap.bits[std::size_t(y * stride + x)] = std::uint8_t((x + 2 * y) % 3);
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("i.gif"));
    cDIBSectionSave writer;
    ASSERT_FALSE(writer.PictureBoxToGif(bitmap, QStringLiteral("p"), path, true, 8, true,
                                        0x0000FF /* red */, 2, 3, 4, 2, 8, 16, 0xFFFFFF, 0,
                                        QStringLiteral("hello")));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok) << gif.error.toStdString();
    EXPECT_TRUE(gif.interlaced);
    EXPECT_TRUE(gif.hasTransparent);
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
    ASSERT_FALSE(writer.PictureBoxToGif(bitmap, QStringLiteral("p"), path, true, 4, false));
    const DecodedGif gif = decodeGif(path);
    ASSERT_TRUE(gif.ok);
    // Top row = buffer row 2, read from byte 8.
    const std::vector<std::uint8_t> top(gif.indices.begin(), gif.indices.begin() + 9);
    EXPECT_EQ(top, (std::vector<std::uint8_t>{0xB, 0xC, 0xD, 0xE, 0xF, 0x0, 0x1, 0x2, 0x3}));
}

namespace {

// A picture of many colours made by integer arithmetic alone, so that any program can make
// the same one.
QImage arithmeticPicture(int width, int height) {
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int r = (x * 7 + y * 3 + ((x * y) % 13) * 5) & 255;
            const int g = (x * x + y * 11 + (x * y * x) % 23) % 256;
            const int b = (((x ^ y) * 5) + (x * y * 31) % 17 + (y * y) % 29) & 255;
            picture.setPixel(x, y, qRgb(r, g, b));
        }
    return picture;
}

} // namespace

// The palette, the diffusion and the coder together give exactly the bytes the program has
// always written for these pictures, whatever is done to make them faster.
TEST(GifWriter, KnownPicturesKeepTheirExactBytes) {
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const struct {
        int width, height;
        const char* sha256;
    } cases[] = {
        {160, 120, "7c0e92491109e6f04579103ef2671e086d67ae722d5bb38b6fbd18b5dc9e878b"},
        {333, 77, "759ac12f4536b55c664499380dcc6e11d44d865288bf5e8fbcad4a89edcb1d45"},
    };
    for (const auto& c : cases) {
        const QString path = dir.filePath(QStringLiteral("known%1.gif").arg(c.width));
        ASSERT_TRUE(SavePictureBoxImage(path, arithmeticPicture(c.width, c.height), 2));
        const QByteArray bytes = readFile(path);
        EXPECT_GT(bytes.size(), 1000);
        EXPECT_EQ(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex(),
                  QByteArray(c.sha256))
            << c.width << "x" << c.height;
    }
}
