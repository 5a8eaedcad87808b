#pragma once

#include "imaging/cDIBSection.h"
#include "platform/StatusSink.h"

#include <QImage>
#include <QString>
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

// Where a GIF save shows its progress: two lines of text, and the indexed picture at the end.
// Being a status sink as well, it also hears the save's questions, its progress and its pauses.
class GifStatusSink : public StatusSink {
public:
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

// The optional text box of a GIF file, drawn by a viewer over the picture. Colours are
// red + 256 * green + 65536 * blue.
struct GifTextBox {
    int left = 0;
    int top = 0;
    int columns = 0;
    int rows = 0;
    int cellWidth = 8;
    int cellHeight = 16;
    std::int32_t background = 16777215;
    std::int32_t foreground = 0;
    QString text; // no box when empty
};

// How PictureBoxToGif writes the stream: index bits, row order and the optional extensions.
struct GifOptions {
    int bits = 8;
    bool interlaced = false;
    std::optional<std::int32_t> transparentColour; // red + 256 * green + 65536 * blue
    GifTextBox textBox;
};

// Writes a picture as a GIF89a file: quantises it to 16 or 256 colours with diffusion, then
// writes the stream with its own LZW coder, whose codes never pass 9 bits.
class cDIBSectionSave {
public:
    // `sink` hears the questions, progress and pauses of each save that has no status display
    // of its own: the window passes one that shows boxes and lets events run.
    explicit cDIBSectionSave(StatusSink& sink = quietSink()) : mSink(sink) {}

    // Saves `picture` to `fileName`. `pictureName` opens the comment of the file. `bits` is
    // corrected to 4 or 8 and comes back corrected. Failures are raised as Failure with the
    // source "cDIBSectionSave.Save" (a "No" to the palette's question ends the save with the
    // palette's failure); a partly written file stays on disk.
    bool Save(const QImage& picture, const QString& pictureName, GifStatusSink* statusBox,
              const QString& fileName, int& bits);

    // Writes the indexed picture as a GIF file, to a temporary file when `fileName` is empty.
    // Returns true when an error occurred; lastErrorNumber() and lastErrorText() tell which.
    bool PictureBoxToGif(const IndexedBitmap& bitmap, const QString& pictureName,
                         const QString& fileName, const GifOptions& options = {});

    int StageTotal() const { return stageTotal; }
    void setStageTotal(int value) { stageTotal = value; }
    int LineTotal() const { return lineTotal; }
    void setLineTotal(int value) { lineTotal = value; }
    void UpdateStatus(int line, int width, int height, const QString& stageText, int stageNumber);
    // Where this save's questions, progress and pauses go: its status display when it has one.
    StatusSink& reporter() const { return mStatus ? *mStatus : mSink; }

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
    IndexedBitmap quantise(const QImage& picture, int bits);
    void showResult(const IndexedBitmap& indexed);
    void writeStream(std::vector<std::uint8_t>& out, const IndexedBitmap& bitmap,
                     const QString& pictureName, const GifOptions& options);
    void LoadBitmapBits(const IndexedBitmap& bitmap, int bits);
    void WriteGraphicControlExtension(std::vector<std::uint8_t>& out, std::int32_t colour) const;
    void writeImageData(std::vector<std::uint8_t>& out, const IndexedBitmap& bitmap,
                        bool interlaced);
    void WritePlainTextExtension(std::vector<std::uint8_t>& out, const GifTextBox& box) const;
    int NearestColourIndex(std::int32_t colour) const;

    StatusSink& mSink;
    int stageTotal = 3;
    int lineTotal = 0;
    GifStatusSink* mStatus = nullptr;
    int bitsPerPixel = 8;
    int colourCount = 256;
    int rowBytes = 0;
    std::array<std::array<std::uint8_t, 4>, 256> colourTable{};
    int mLastErrorNumber = 0;
    QString mLastErrorText;
};
