#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>
#include <cstdint>
#include <vector>

// Helpers shared by the imaging tests: pictures made on the spot and an independent GIF decoder.
namespace imagingtest {

// A smooth picture with some noise and a few hard edges, like a photograph.
QImage photoLike(int width, int height, std::uint32_t seed = 1);
// Pixels of random colours.
QImage noise(int width, int height, std::uint32_t seed = 1);

// What giflib reads from a GIF file.
struct DecodedGif {
    bool ok = false;
    QString error;
    int screenWidth = 0, screenHeight = 0;
    int width = 0, height = 0;
    bool interlaced = false;
    std::vector<QRgb> colours;         // the global colour table
    std::vector<std::uint8_t> indices; // top row first
    std::vector<QByteArray> comments;
    bool hasTransparent = false;
    int transparentIndex = -1;
    bool hasPlainText = false;
    QImage picture() const; // the indices through the colour table
};
DecodedGif decodeGif(const QString& path);

// The palette-mapped picture the GIF writer must produce for `picture` at `bits`, with the
// palette entries in order.
QImage mappedPicture(const QImage& picture, int bits, std::vector<QRgb>* palette = nullptr);

QByteArray readFile(const QString& path);
void writeFile(const QString& path, const QByteArray& bytes);

} // namespace imagingtest
