#pragma once

#include "platform/StatusSink.h"

#include <QByteArray>
#include <QImage>
#include <QString>
#include <cstdint>
#include <vector>

// Helpers shared by the imaging tests: pictures made on the spot, encoders, an independent GIF
// decoder and a sink that records what an engine reports.
namespace imagingtest {

// A smooth picture with some noise and a few hard edges, like a photograph.
QImage photoLike(int width, int height, std::uint32_t seed = 1);
// The picture in a file format: "BMP", "PNG", "JPG" by Qt, "TIFF" and "TGA" by FreeImage.
QByteArray encoded(const QImage& picture, const char* format);

// What giflib reads from a GIF file.
struct DecodedGif {
    bool ok = false;
    QString error;
    int screenWidth = 0, screenHeight = 0, width = 0, height = 0;
    bool interlaced = false, hasPlainText = false;
    int transparentIndex = -1;
    std::vector<QRgb> colours;         // the global colour table
    std::vector<std::uint8_t> indices; // top row first
    QImage picture() const;            // the indices through the colour table
};
DecodedGif decodeGif(const QString& path);

// The palette-mapped picture the GIF writer must produce for `picture` at `bits`, with the
// palette entries in order.
QImage mappedPicture(const QImage& picture, int bits, std::vector<QRgb>* palette = nullptr);

QByteArray readFile(const QString& path);
void writeFile(const QString& path, const QByteArray& bytes);

// Records questions (answered from `answers`, then by default), progress and pauses.
struct RecordingSink : StatusSink {
    std::vector<int> answers;
    std::vector<std::pair<QString, int>> questions; // text and style
    std::vector<std::pair<int, int>> progressReports;
    int pauses = 0;
    int ask(const QString& text, int style, const QString& title) override;
    void progress(int done, int total) override { progressReports.emplace_back(done, total); }
    void breathe() override { ++pauses; }
};

} // namespace imagingtest
