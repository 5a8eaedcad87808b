#include "imaging/DIWriteJpg.h"

#include <QImage>
#include <csetjmp>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <vector>

#include <jpeglib.h>

namespace {

// A picture as rows of blue, green, red bytes.
struct BgrPicture {
    int width = 0;
    int height = 0;
    std::size_t stride = 0;
    bool bottomUp = true;
    std::vector<std::uint8_t> bytes;       // the pixel rows, as stored
    const std::uint8_t* row(int y) const { // y from the top
        return bytes.data() + std::size_t(bottomUp ? height - 1 - y : y) * stride;
    }
};

std::uint32_t le32(const std::uint8_t* p) {
    return std::uint32_t(p[0]) | std::uint32_t(p[1]) << 8 | std::uint32_t(p[2]) << 16 |
           std::uint32_t(p[3]) << 24;
}
std::uint16_t le16(const std::uint8_t* p) {
    return std::uint16_t(p[0] | p[1] << 8);
}

// Reads the file whole.
bool readAll(const QByteArray& path, std::vector<std::uint8_t>& data) {
    FILE* f = std::fopen(path.constData(), "rb");
    if (!f)
        return false;
    std::uint8_t buffer[65536];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0)
        data.insert(data.end(), buffer, buffer + n);
    const bool ok = !std::ferror(f);
    std::fclose(f);
    return ok;
}

// The 24-bit uncompressed bitmaps the program writes are read directly; any other bitmap goes
// through QImage.
bool readBitmap(const QByteArray& path, BgrPicture& picture) {
    std::vector<std::uint8_t> data;
    if (!readAll(path, data))
        return false;
    if (data.size() >= 54 && data[0] == 'B' && data[1] == 'M') {
        const std::uint32_t offset = le32(&data[10]);
        const std::uint32_t headerSize = le32(&data[14]);
        const auto width = std::int32_t(le32(&data[18]));
        const auto height = std::int32_t(le32(&data[22]));
        const std::uint16_t bitCount = le16(&data[28]);
        const std::uint32_t compression = le32(&data[30]);
        if (headerSize >= 40 && bitCount == 24 && compression == 0 && width > 0 && height != 0 &&
            width <= 65500 && height <= 65500 && height >= -65500) {
            const std::size_t stride = (std::size_t(width) * 3 + 3) & ~std::size_t(3);
            const std::size_t rows = std::size_t(height < 0 ? -height : height);
            if (offset <= data.size() && data.size() - offset >= stride * rows) {
                picture.width = width;
                picture.height = int(rows);
                picture.stride = stride;
                picture.bottomUp = height > 0;
                picture.bytes.assign(data.begin() + offset, data.begin() + offset + stride * rows);
                return true;
            }
        }
    }
    QImage image;
    if (!image.loadFromData(data.data(), int(data.size())) || image.isNull())
        return false;
    image = image.convertToFormat(QImage::Format_BGR888);
    picture.width = image.width();
    picture.height = image.height();
    picture.stride = std::size_t(image.bytesPerLine());
    picture.bottomUp = false;
    picture.bytes.assign(image.constBits(), image.constBits() + image.sizeInBytes());
    return true;
}

struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
};

void onError(j_common_ptr info) {
    std::longjmp(reinterpret_cast<ErrorManager*>(info->err)->jump, 1);
}
void onMessage(j_common_ptr, int) {}

// Encodes; no C++ object with a destructor lives between setjmp and longjmp here.
int encode(const BgrPicture& picture, FILE* out, int quality) {
    jpeg_compress_struct info;
    ErrorManager errors;
    info.err = jpeg_std_error(&errors.base);
    errors.base.error_exit = onError;
    errors.base.emit_message = onMessage;
    if (setjmp(errors.jump)) {
        jpeg_destroy_compress(&info);
        return 2;
    }
    jpeg_create_compress(&info);
    jpeg_stdio_dest(&info, out);
    info.image_width = JDIMENSION(picture.width);
    info.image_height = JDIMENSION(picture.height);
    info.input_components = 3;
    info.in_color_space = JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    jpeg_start_compress(&info, TRUE);
    JSAMPROW rows[16];
    while (info.next_scanline < info.image_height) {
        JDIMENSION n = 0;
        for (; n < 16 && info.next_scanline + n < info.image_height; ++n)
            rows[n] = const_cast<JSAMPROW>(picture.row(int(info.next_scanline + n)));
        jpeg_write_scanlines(&info, rows, n);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    return 0;
}

} // namespace

int DIWriteJpg(const QByteArray& jpegPath, const QByteArray& bitmapPath, int quality,
               int /*flag*/) {
    BgrPicture picture;
    if (!readBitmap(bitmapPath, picture) || picture.width <= 0 || picture.height <= 0)
        return 1;
    if (quality < 1 || quality > 100)
        quality = 90;
    FILE* out = std::fopen(jpegPath.constData(), "wb");
    if (!out)
        return 2;
    int result = encode(picture, out, quality);
    if (std::fclose(out) != 0 && result == 0)
        result = 2;
    if (result != 0)
        std::remove(jpegPath.constData());
    return result;
}
