#pragma once

#include "imaging/cDIBSection.h"

#include <QImage>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

// Where a GIF save shows its progress: two lines of text, and the indexed picture at the end.
class GifStatusSink {
public:
    virtual ~GifStatusSink() = default;
    virtual void Clear() = 0;
    virtual void ShowLines(const QString& line1, const QString& line2) = 0;
    // Shows the finished indexed picture; false when it cannot.
    virtual bool ShowPicture(const QImage& picture) = 0;
};

// A picture with 4 or 8 bits an index, bottom row first, rows padded to 4 bytes, and its
// colour table (blue, green, red, unused).
struct IndexedBitmap {
    BitmapInfoHeader header;
    std::array<std::array<std::uint8_t, 4>, 256> colourTable{};
    std::vector<std::uint8_t> bits;
};

// Writes a picture as a GIF89a file: quantises it to 16 or 256 colours with diffusion, then
// writes the stream with its own LZW coder, whose codes never pass 9 bits.
class cDIBSectionSave {
public:
    cDIBSectionSave() = default;

    // Saves `picture` to `fileName`. `pictureName` opens the comment of the file. `bits` is
    // corrected to 4 or 8 and comes back corrected. Failures are raised as Failure with the
    // source "cDIBSectionSave.Save"; a partly written file stays on disk.
    bool Save(const QImage& picture, const QString& pictureName, GifStatusSink* statusBox,
              const QString& fileName, int& bits);

    // Writes the indexed picture as a GIF file. Returns true when an error occurred.
    // Colours are red + 256 * green + 65536 * blue.
    bool PictureBoxToGif(const IndexedBitmap& bitmap, const QString& pictureName,
                         const QString& fileName, bool discardTempFirst, int bits, bool interlaced,
                         std::optional<std::int32_t> transparentColour = {}, int textLeft = 0,
                         int textTop = 0, int textColumns = 0, int textRows = 0, int cellWidth = 8,
                         int cellHeight = 16, std::int32_t textBackground = 16777215,
                         std::int32_t textForeground = 0, const QString& text = {});

    int StageTotal() const { return stageTotal; }
    void setStageTotal(int value) { stageTotal = value; }
    int LineTotal() const { return lineTotal; }
    void setLineTotal(int value) { lineTotal = value; }
    void UpdateStatus(int line, int width, int height, const QString& stageText, int stageNumber);

    // The number and text of the error PictureBoxToGif met last, for diagnostics.
    int lastErrorNumber() const { return mLastErrorNumber; }
    const QString& lastErrorText() const { return mLastErrorText; }

    // The failure numbers Save raises.
    static constexpr std::int32_t kErrPrinterDC = std::int32_t(0x8004020DU);
    static constexpr std::int32_t kErrCreateDIB = std::int32_t(0x8004020EU);
    static constexpr std::int32_t kErrDisplayDC = std::int32_t(0x8004020FU);
    static constexpr std::int32_t kErrCompatibleDC = std::int32_t(0x80040210U);
    static constexpr std::int32_t kErrSelect = std::int32_t(0x80040211U);
    static constexpr std::int32_t kErrPictureBoxToGif = std::int32_t(0x80040212U);
    static constexpr std::int32_t kErrStatusBlit = std::int32_t(0x80040213U);
    static constexpr std::int32_t kErrLoadBits = std::int32_t(0x80040001U);
    static constexpr std::int32_t kErrAllocate = std::int32_t(0x80040003U);

    // The text that marks files of this writer, after the picture's name in the comment.
    static const char* const kWriterMark;

private:
    void writeStream(std::vector<std::uint8_t>& out, const IndexedBitmap& bitmap,
                     const QString& pictureName, int bits, bool interlaced,
                     std::optional<std::int32_t> transparentColour, int textLeft, int textTop,
                     int textColumns, int textRows, int cellWidth, int cellHeight,
                     std::int32_t textBackground, std::int32_t textForeground, const QString& text);
    int NearestColourIndex(std::int32_t colour) const;

    int stageTotal = 3;
    int lineTotal = 0;
    GifStatusSink* mStatus = nullptr;
    bool mHasPicture = false;
    int bitsPerPixel = 8;
    int colourCount = 256;
    std::array<std::array<std::uint8_t, 4>, 256> colourTable{};
    int mLastErrorNumber = 0;
    QString mLastErrorText;
};
