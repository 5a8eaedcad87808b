#include "imaging/cDIBSectionSave.h"

#include "imaging/GifLzwCoder.h"
#include "imaging/cPalette.h"
#include "platform/Failure.h"

#include <QDir>
#include <QTemporaryFile>
#include <cerrno>
#include <cmath>
#include <fcntl.h>
#include <new>
#include <unistd.h>

const char* const cDIBSectionSave::kWriterMark = "Written by the GIF writer v01";

namespace {

const QString kSaveSource = QStringLiteral("cDIBSectionSave.Save");
const QString kGifSource = QStringLiteral("cDIBSectionSave.PictureBoxToGif");

inline int padToLong(int n) {
    return (n + 3) & ~3;
}

void putWord(std::vector<std::uint8_t>& out, int value) {
    out.push_back(std::uint8_t(value & 0xFF));
    out.push_back(std::uint8_t((value >> 8) & 0xFF));
}

// Bytes in sub-blocks of at most 255, then the zero-length block.
void putSubBlocks(std::vector<std::uint8_t>& out, const QByteArray& bytes) {
    for (qsizetype at = 0; at < bytes.size(); at += 255) {
        const qsizetype n = std::min<qsizetype>(255, bytes.size() - at);
        out.push_back(std::uint8_t(n));
        out.insert(out.end(), bytes.begin() + at, bytes.begin() + at + n);
    }
    out.push_back(0);
}

// Buffer row numbers in the order the rows are written; rows are stored bottom-up.
std::vector<int> BuildRowOrder(int imageHeight, bool interlaced) {
    std::vector<int> order;
    order.reserve(std::size_t(imageHeight));
    auto take = [&](int first, int step) {
        for (int k = first; k <= imageHeight; k += step)
            order.push_back(imageHeight - k);
    };
    if (!interlaced) {
        take(1, 1);
    } else {
        take(1, 8);
        take(5, 8);
        take(3, 4);
        take(2, 2);
    }
    return order;
}

// The indexed bitmap of a picture whose pixels took the 0-based palette indices `chosen`, row by
// row of the buffer, with the first 16 or 256 palette entries as its colour table.
IndexedBitmap makeIndexedBitmap(const cPalette& palette, const std::vector<std::uint16_t>& chosen,
                                int width, int height, int bits) {
    IndexedBitmap indexed;
    BitmapInfoHeader& header = indexed.header;
    header.biWidth = width;
    header.biHeight = height;
    header.biBitCount = std::uint16_t(bits);
    header.biSizeImage = bits == 4 ? std::uint32_t((width / 2 + (width / 2) % 4) * height)
                                   : std::uint32_t((width + width % 4) * height);
    const int entries = std::min(bits == 4 ? 16 : 256, palette.Count());
    for (int i = 0; i < entries; ++i)
        indexed.colourTable[std::size_t(i)] = {palette.Blue(i + 1), palette.Green(i + 1),
                                               palette.Red(i + 1), 0};
    const int stride = ((width * bits + 31) / 32) * 4;
    indexed.bits.assign(std::size_t(stride) * std::size_t(height), 0);
    for (int y = 0; y < height; ++y) {
        const std::uint16_t* index = chosen.data() + std::size_t(y) * std::size_t(width);
        std::uint8_t* row = indexed.bits.data() + std::size_t(y) * std::size_t(stride);
        for (int x = 0; x < width; ++x) {
            if (bits == 8)
                row[x] = std::uint8_t(index[x]);
            else
                row[x / 2] |= std::uint8_t((index[x] & 0x0F) << ((x & 1) ? 0 : 4));
        }
    }
    return indexed;
}

// The indexed bitmap as a picture, top row first.
QImage indexedPicture(const IndexedBitmap& indexed) {
    const int width = indexed.header.biWidth, height = indexed.header.biHeight;
    const int bits = indexed.header.biBitCount;
    const int stride = ((width * bits + 31) / 32) * 4;
    QImage shown(width, height, QImage::Format_Indexed8);
    QList<QRgb> colours;
    for (const auto& c : indexed.colourTable)
        colours.push_back(qRgb(c[2], c[1], c[0]));
    shown.setColorTable(colours);
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* row =
            indexed.bits.data() + std::size_t(height - 1 - y) * std::size_t(stride);
        std::uint8_t* out = shown.scanLine(y);
        for (int x = 0; x < width; ++x)
            out[x] = bits == 8 ? row[x] : ((row[x / 2] >> ((x & 1) ? 0 : 4)) & 0x0F);
    }
    return shown;
}

void WriteHeader(std::vector<std::uint8_t>& out, int screenWidth, int screenHeight,
                 int bitsPerPixel) {
    for (const char c : {'G', 'I', 'F', '8', '9', 'a'})
        out.push_back(std::uint8_t(c));
    putWord(out, screenWidth);
    putWord(out, screenHeight);
    out.push_back(std::uint8_t(240 | (bitsPerPixel - 1)));
    out.push_back(0); // background colour index
    out.push_back(0); // pixel aspect ratio
}

void WriteImageDescriptor(std::vector<std::uint8_t>& out, int width, int height, bool interlaced,
                          int minCodeSize) {
    out.push_back(44);
    putWord(out, 0);
    putWord(out, 0);
    putWord(out, width);
    putWord(out, height);
    out.push_back(interlaced ? 64 : 0);
    out.push_back(std::uint8_t(minCodeSize));
}

void WriteCommentExtension(std::vector<std::uint8_t>& out, const QString& pictureName) {
    out.push_back(33);
    out.push_back(254);
    putSubBlocks(
        out,
        (pictureName + QLatin1Char(' ') + QLatin1String(cDIBSectionSave::kWriterMark)).toLatin1());
}

// Writes all of `bytes` at the start of `path` without cutting an existing file short.
void writeOver(const QString& path, const std::vector<std::uint8_t>& bytes) {
    const QByteArray name = QFile::encodeName(path);
    const int fd = ::open(name.constData(), O_WRONLY | O_CREAT | O_CLOEXEC, 0666);
    if (fd < 0)
        raiseFailure(FailureNumber::PathFileAccess, kGifSource);
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0) {
            ::close(fd);
            raiseFailure(FailureNumber::DiskFull, kGifSource);
        }
        done += std::size_t(n);
    }
    if (::close(fd) != 0)
        raiseFailure(FailureNumber::DiskFull, kGifSource);
}

} // namespace

void cDIBSectionSave::UpdateStatus(int line, int /*width*/, int /*height*/,
                                   const QString& stageText, int stageNumber) {
    const int shownLine = std::max(line, 1);
    reporter().progress((stageNumber - 1) * lineTotal + shownLine, stageTotal * lineTotal);
    if (!mStatus)
        return;
    mStatus->Clear();
    mStatus->ShowLines(
        QStringLiteral("Line :%1 of %2").arg(shownLine).arg(lineTotal),
        QStringLiteral("%1: Stage %2 of %3").arg(stageText).arg(stageNumber).arg(stageTotal));
}

int cDIBSectionSave::NearestColourIndex(std::int32_t colour) const {
    const int red = colour % 256, green = (colour / 256) % 256, blue = colour / 65536;
    long best = 10000000;
    int index = 0;
    for (int i = 0; i < colourCount; ++i) {
        const auto& c = colourTable[std::size_t(i)];
        const long dr = red - c[2], dg = green - c[1], db = blue - c[0];
        const long distance = dr * dr + dg * dg + db * db;
        if (distance < best) {
            best = distance;
            index = i;
        }
    }
    return index & 0xFF;
}

bool cDIBSectionSave::Save(const QImage& picture, const QString& pictureName,
                           GifStatusSink* statusBox, const QString& fileName, int& bits) {
    mStatus = statusBox;
    if (mStatus)
        mStatus->Clear();
    if (fileName.isEmpty())
        throw Failure(kErrPrinterDC, kSaveSource, QStringLiteral("Cannot Create Printer DC"));
    if (bits != 4)
        bits = 8;
    try {
        const IndexedBitmap indexed = quantise(picture, bits);
        if (PictureBoxToGif(indexed, pictureName, fileName, GifOptions{bits, false, {}, {}}))
            throw Failure(kErrPictureBoxToGif, kSaveSource,
                          QStringLiteral("PictureBoxToGif function failed"));
        if (mStatus)
            showResult(indexed);
    } catch (const std::bad_alloc&) {
        raiseFailure(FailureNumber::OutOfMemory, kSaveSource);
    }
    return true;
}

// Reduces the picture to its palette with diffusion and gives each diffused pixel the index of
// its nearest palette colour.
IndexedBitmap cDIBSectionSave::quantise(const QImage& picture, int bits) {
    const int width = picture.width();
    const int height = picture.height();
    cDIBSection source;
    if (!source.Create(width, height))
        throw Failure(kErrCreateDIB, kSaveSource, QStringLiteral("Cannot Create DIBSection"));
    source.LoadPictureBlt(picture);

    cPalette palette;
    palette.CreateOptimal(source, this, 1 << bits, 8);
    cDIBSection mapped;
    if (!mapped.Create(width, height))
        throw Failure(kErrCreateDIB, kSaveSource, QStringLiteral("Cannot Create DIBSection"));
    // The diffusion only reaches pixels not yet mapped, so the index ApplyPalette chose for a
    // pixel is the index of the nearest colour to the diffused pixel left in `source`.
    std::vector<std::uint16_t> chosen;
    palette.ApplyPalette(source, mapped, this, true, &chosen);
    return makeIndexedBitmap(palette, chosen, width, height, bits);
}

void cDIBSectionSave::showResult(const IndexedBitmap& indexed) {
    mStatus->Clear();
    if (!mStatus->ShowPicture(indexedPicture(indexed)))
        throw Failure(kErrStatusBlit, kSaveSource,
                      QStringLiteral("Blit to our status PictureBox failed"));
}

bool cDIBSectionSave::PictureBoxToGif(const IndexedBitmap& bitmap, const QString& pictureName,
                                      const QString& fileName, const GifOptions& options) {
    mLastErrorNumber = 0;
    mLastErrorText.clear();
    try {
        std::vector<std::uint8_t> out;
        writeStream(out, bitmap, pictureName, options);
        QString name = fileName;
        if (name.isEmpty()) {
            QTemporaryFile temporary(QDir::tempPath() + QStringLiteral("/GIFXXXXXX.tmp"));
            temporary.setAutoRemove(false);
            if (!temporary.open())
                raiseFailure(FailureNumber::PathFileAccess, kGifSource);
            name = temporary.fileName();
        }
        writeOver(name, out);
    } catch (const Failure& failure) {
        mLastErrorNumber = failure.number();
        mLastErrorText = failure.description();
        return true;
    } catch (const std::bad_alloc&) {
        mLastErrorNumber = kErrAllocate;
        return true;
    }
    return false;
}

// Takes the colour table of the bitmap and checks its bits against its size.
void cDIBSectionSave::LoadBitmapBits(const IndexedBitmap& bitmap, int bits) {
    if (bits != 1 && bits != 4 && bits != 8)
        throw Failure(kErrLoadBits, kGifSource, {});
    bitsPerPixel = bits;
    colourCount = 1 << bitsPerPixel;
    colourTable = {};
    const int tableEntries = bits == 8 ? 256 : 16;
    for (int i = 0; i < tableEntries; ++i)
        colourTable[std::size_t(i)] = bitmap.colourTable[std::size_t(i)];
    const int width = bitmap.header.biWidth;
    const int height = bitmap.header.biHeight;
    if (bitmap.bits.empty() || width <= 0 || height <= 0 || width > 32767 || height > 32767)
        throw Failure(kErrLoadBits, kGifSource, {});
    // Rounded half to even: an odd width at 4 bits can read rows shorter than they are.
    rowBytes = padToLong(int(std::nearbyint(double(width) * bits / 8.0)));
    const int pixelsPerByte = 8 / bits;
    const std::size_t rowNeed = std::size_t((width + pixelsPerByte - 1) / pixelsPerByte);
    if (std::size_t(height - 1) * std::size_t(rowBytes) + rowNeed > bitmap.bits.size())
        throw Failure(kErrLoadBits, kGifSource, {});
}

void cDIBSectionSave::writeStream(std::vector<std::uint8_t>& out, const IndexedBitmap& bitmap,
                                  const QString& pictureName, const GifOptions& options) {
    LoadBitmapBits(bitmap, options.bits);
    // SetDimensions: the screen is large enough for the picture and the text box.
    const GifTextBox& box = options.textBox;
    const int imageWidth = bitmap.header.biWidth, imageHeight = bitmap.header.biHeight;
    const int screenWidth = std::max(box.left + box.columns * box.cellWidth, imageWidth);
    const int screenHeight = std::max(box.top + box.rows * box.cellHeight, imageHeight);
    if (screenWidth > 32767 || screenHeight > 32767)
        raiseFailure(FailureNumber::Overflow, kGifSource);

    out.reserve(out.size() + std::size_t(imageWidth) * std::size_t(imageHeight) / 2 + 1024);
    WriteHeader(out, screenWidth, screenHeight, bitsPerPixel);
    for (int i = 0; i < colourCount; ++i) { // WriteColourTable
        const auto& c = colourTable[std::size_t(i)];
        out.insert(out.end(), {c[2], c[1], c[0]});
    }
    if (options.transparentColour)
        WriteGraphicControlExtension(out, *options.transparentColour);
    writeImageData(out, bitmap, options.interlaced);
    WriteCommentExtension(out, pictureName);
    if (!box.text.isEmpty())
        WritePlainTextExtension(out, box);
    out.push_back(59); // WriteTrailer
}

void cDIBSectionSave::WriteGraphicControlExtension(std::vector<std::uint8_t>& out,
                                                   std::int32_t colour) const {
    out.insert(out.end(), {33, 249, 4, 5, 0, 0});
    out.push_back(std::uint8_t(NearestColourIndex(colour)));
    out.push_back(0);
}

// The image descriptor and the LZW data, row by row in the order of BuildRowOrder. The sink
// gets a pause after every row.
void cDIBSectionSave::writeImageData(std::vector<std::uint8_t>& out, const IndexedBitmap& bitmap,
                                     bool interlaced) {
    const int imageWidth = bitmap.header.biWidth, imageHeight = bitmap.header.biHeight;
    GifLzwCoder coder(out);
    coder.Initialise(bitsPerPixel);
    WriteImageDescriptor(out, imageWidth, imageHeight, interlaced, coder.minCodeSize());
    const std::vector<int> rowOrder = BuildRowOrder(imageHeight, interlaced);
    int count = 1;
    coder.WriteCode(coder.clearCode());
    lineTotal = imageHeight;
    for (int i = 0; i < imageHeight; ++i) {
        UpdateStatus(i + 1, imageWidth, imageHeight, QStringLiteral("Saving Gif file"), 3);
        const std::uint8_t* row =
            bitmap.bits.data() + std::size_t(rowOrder[std::size_t(i)]) * std::size_t(rowBytes);
        for (int x = 0; x < imageWidth; ++x) {
            int value;
            if (bitsPerPixel == 8)
                value = row[x];
            else if (bitsPerPixel == 4)
                value = (row[x / 2] >> ((x & 1) ? 0 : 4)) & 0x0F;
            else
                value = (row[x / 8] >> (7 - (x & 7))) & 1;
            coder.EncodePixel(value, count);
        }
        reporter().breathe();
    }
    coder.FinishStream();
}

void cDIBSectionSave::WritePlainTextExtension(std::vector<std::uint8_t>& out,
                                              const GifTextBox& box) const {
    out.insert(out.end(), {33, 1, 12});
    putWord(out, box.left);
    putWord(out, box.top);
    putWord(out, box.columns * box.cellWidth);
    putWord(out, box.rows * box.cellHeight);
    out.push_back(std::uint8_t(box.cellWidth));
    out.push_back(std::uint8_t(box.cellHeight));
    out.push_back(std::uint8_t(NearestColourIndex(box.foreground)));
    out.push_back(std::uint8_t(NearestColourIndex(box.background)));
    putSubBlocks(out, box.text.toLatin1());
}
