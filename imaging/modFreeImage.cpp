#include "imaging/modFreeImage.h"

#include "platform/ChildProcess.h"
#include <FreeImage.h>

#include <QFile>
#include <algorithm>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <dlfcn.h>

namespace {

QString& lastError() {
    static QString text;
    return text;
}

bool& started() {
    static bool value = false;
    return value;
}

const QString kFrom = QStringLiteral("[FreeImage_BMP_From_DIB] ");

// FreeImage and the dozen codec libraries behind it are opened only when a picture in one of
// its formats is read, so that the program and tessaly-img start without them.
struct FreeImageLibrary {
    void* handle = nullptr;
    QString failure; // why the library could not be used
    decltype(&::FreeImage_Initialise) Initialise = nullptr;
    decltype(&::FreeImage_DeInitialise) DeInitialise = nullptr;
    decltype(&::FreeImage_SetOutputMessage) SetOutputMessage = nullptr;
    decltype(&::FreeImage_GetInfoHeader) GetInfoHeader = nullptr;
    decltype(&::FreeImage_GetInfo) GetInfo = nullptr;
    decltype(&::FreeImage_GetBits) GetBits = nullptr;
    decltype(&::FreeImage_FIFSupportsNoPixels) FIFSupportsNoPixels = nullptr;
    decltype(&::FreeImage_Load) Load = nullptr;
    decltype(&::FreeImage_Unload) Unload = nullptr;
    decltype(&::FreeImage_GetWidth) GetWidth = nullptr;
    decltype(&::FreeImage_GetHeight) GetHeight = nullptr;
};

template <typename Function>
bool bindSymbol(FreeImageLibrary& library, Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library.handle, name));
    if (!function && library.failure.isEmpty())
        library.failure =
            QStringLiteral("FreeImage cannot be used: %1 is missing").arg(QLatin1String(name));
    return function != nullptr;
}

// The library, opened on first use; null (with the reason in lastError) when it cannot be.
const FreeImageLibrary* freeImage() {
    static const FreeImageLibrary library = [] {
        FreeImageLibrary out;
        QString reasons;
        for (const char* name : {"libfreeimage.so.3", "libfreeimage.so"}) {
            out.handle = dlopen(name, RTLD_NOW | RTLD_LOCAL);
            if (out.handle)
                break;
            if (const char* why = dlerror())
                reasons = QString::fromLocal8Bit(why);
        }
        if (!out.handle) {
            out.failure = QStringLiteral("FreeImage cannot be loaded (%1)").arg(reasons);
            return out;
        }
        bool ok = bindSymbol(out, out.Initialise, "FreeImage_Initialise");
        ok = bindSymbol(out, out.DeInitialise, "FreeImage_DeInitialise") && ok;
        ok = bindSymbol(out, out.SetOutputMessage, "FreeImage_SetOutputMessage") && ok;
        ok = bindSymbol(out, out.GetInfoHeader, "FreeImage_GetInfoHeader") && ok;
        ok = bindSymbol(out, out.GetInfo, "FreeImage_GetInfo") && ok;
        ok = bindSymbol(out, out.GetBits, "FreeImage_GetBits") && ok;
        ok = bindSymbol(out, out.FIFSupportsNoPixels, "FreeImage_FIFSupportsNoPixels") && ok;
        ok = bindSymbol(out, out.Load, "FreeImage_Load") && ok;
        ok = bindSymbol(out, out.Unload, "FreeImage_Unload") && ok;
        ok = bindSymbol(out, out.GetWidth, "FreeImage_GetWidth") && ok;
        ok = bindSymbol(out, out.GetHeight, "FreeImage_GetHeight") && ok;
        if (!ok) {
            dlclose(out.handle);
            out.handle = nullptr;
        }
        return out;
    }();
    if (!library.handle) {
        RecordFreeImageError(library.failure, true);
        return nullptr;
    }
    return &library;
}

// 64 million pixels: a quarter of a gigabyte at 32 bits.
constexpr quint64 kMaxFreeImagePixels = quint64(1) << 26;

void onFreeImageMessage(FREE_IMAGE_FORMAT, const char* message) {
    RecordFreeImageError(QString::fromLocal8Bit(message ? message : ""), true);
}

// libtiff's handlers, reached through the library FreeImage loaded.
using TiffHandler = void (*)(const char* module, const char* format, va_list args);
using TiffSetHandler = TiffHandler (*)(TiffHandler);

void onTiffWarning(const char*, const char*, va_list) {}

void onTiffError(const char* module, const char* format, va_list args) {
    char text[512];
    std::vsnprintf(text, sizeof text, format, args);
    RecordFreeImageError(QString::fromLocal8Bit(module ? module : "") + QStringLiteral(": ") +
                             QString::fromLocal8Bit(text),
                         true);
}

void silenceTiff(void* handle) {
    if (auto setWarning = reinterpret_cast<TiffSetHandler>(dlsym(handle, "TIFFSetWarningHandler")))
        setWarning(onTiffWarning);
    if (auto setError = reinterpret_cast<TiffSetHandler>(dlsym(handle, "TIFFSetErrorHandler")))
        setError(onTiffError);
}

} // namespace

void RecordFreeImageError(const QString& text, bool keepFirst) {
    if (keepFirst && !lastError().isEmpty())
        return;
    lastError() = text;
}

QString lastFreeImageError() {
    return lastError();
}
void clearFreeImageError() {
    lastError().clear();
}

void InitFreeImage(bool loadLocalPluginsOnly) {
    const FreeImageLibrary* fi = freeImage();
    if (!fi)
        return;
    fi->Initialise(loadLocalPluginsOnly ? FALSE : TRUE);
    fi->SetOutputMessage(onFreeImageMessage);
    silenceTiff(fi->handle);
    started() = true;
}

void DeInitFreeImage() {
    if (!started())
        return;
    if (const FreeImageLibrary* fi = freeImage())
        fi->DeInitialise();
    started() = false;
}

void EnsureFreeImage() {
    if (!started())
        InitFreeImage(true);
}

namespace {

// A mask's channel of a 16-bit pixel, scaled to 0 to 255.
int maskedChannel(std::uint32_t value, std::uint32_t mask) {
    if (!mask)
        return 0;
    int shift = 0;
    while (!(mask & 1)) {
        mask >>= 1;
        ++shift;
    }
    return int(((value >> shift) & mask) * 255 / mask);
}

// One row of a DIB of `bpp` bits a pixel as 32-bit pixels. `colours` holds `colourCount`
// entries for 1 to 8 bits; `masks` are the red, green and blue masks for 16 bits.
void convertRow(const BYTE* in, QRgb* out, int width, int bpp, const RGBQUAD* colours,
                int colourCount, const std::uint32_t masks[3]) {
    for (int x = 0; x < width; ++x) {
        if (bpp <= 8) {
            const int perByte = 8 / bpp;
            const int shift = (perByte - 1 - x % perByte) * bpp;
            const int index = (in[x / perByte] >> shift) & ((1 << bpp) - 1);
            const RGBQUAD c = index < colourCount ? colours[index] : RGBQUAD{0, 0, 0, 0};
            out[x] = qRgb(c.rgbRed, c.rgbGreen, c.rgbBlue);
        } else if (bpp == 16) {
            const std::uint32_t v = std::uint32_t(in[2 * x] | in[2 * x + 1] << 8);
            out[x] = qRgb(maskedChannel(v, masks[0]), maskedChannel(v, masks[1]),
                          maskedChannel(v, masks[2]));
        } else {
            const int step = bpp / 8;
            out[x] = qRgb(in[step * x + 2], in[step * x + 1], in[step * x]);
        }
    }
}

// What CreateDIBitmap makes of the header, the colour table and the bits: the picture, or the
// system's error code (87 for a header it cannot take, 8 for no memory) and a null picture.
int createDIBitmap(const BITMAPINFOHEADER& header, const BITMAPINFO& info, const BYTE* bits,
                   QImage& picture) {
    const int width = int(header.biWidth);
    const int rawHeight = int(header.biHeight);
    const int height = rawHeight < 0 ? -rawHeight : rawHeight;
    const int bpp = header.biBitCount;
    if (width <= 0 || height <= 0 || width > 32768 || height > 32768)
        return 87;
    if (bpp != 1 && bpp != 4 && bpp != 8 && bpp != 16 && bpp != 24 && bpp != 32)
        return 87;
    picture = QImage(width, height, QImage::Format_RGB32);
    if (picture.isNull())
        return 8;
    const int colourCount =
        bpp > 8 ? 0
                : (header.biClrUsed ? int(std::min<DWORD>(header.biClrUsed, 1u << bpp)) : 1 << bpp);
    std::uint32_t masks[3] = {0x7C00, 0x03E0, 0x001F};
    if (bpp == 16 && header.biCompression == 3 /* BI_BITFIELDS */)
        std::memcpy(masks, info.bmiColors, sizeof masks);
    const std::size_t stride = ((std::size_t(width) * std::size_t(bpp) + 31) / 32) * 4;
    for (int y = 0; y < height; ++y) {
        const int stored = rawHeight < 0 ? y : height - 1 - y;
        convertRow(bits + std::size_t(stored) * stride,
                   reinterpret_cast<QRgb*>(picture.scanLine(y)), width, bpp, info.bmiColors,
                   colourCount, masks);
    }
    return 0;
}

} // namespace

bool FreeImage_BMP_From_DIB(FIBITMAP* dib, QImage& bitmap) {
    bitmap = QImage();
    lastError().clear();
    if (!dib) {
        RecordFreeImageError(kFrom + QStringLiteral("No DIB specified to convert"), true);
        return false;
    }
    const FreeImageLibrary* fi = freeImage();
    if (!fi)
        return false;
    const BITMAPINFOHEADER* header = fi->GetInfoHeader(dib);
    if (!header) {
        RecordFreeImageError(
            kFrom + QStringLiteral("FreeImage_GetInfoHeader failed to get the DIB header"), true);
        return false;
    }
    const BITMAPINFO* info = fi->GetInfo(dib);
    if (!info) {
        RecordFreeImageError(kFrom + QStringLiteral("FreeImage_GetInfo failed to get the DIB info"),
                             true);
        return false;
    }
    const BYTE* bits = fi->GetBits(dib);
    if (!bits) {
        RecordFreeImageError(
            kFrom + QStringLiteral("FreeImage_GetBits failed to get the DIB's bits"), true);
        return false;
    }
    QImage picture;
    if (const int code = createDIBitmap(*header, *info, bits, picture)) {
        RecordFreeImageError(kFrom +
                                 QStringLiteral("CreateDIBitmap failed to create the BITMAP "
                                                "from the DIB reporting error code ") +
                                 QString::number(code),
                             true);
        return false;
    }
    bitmap = picture;
    return true;
}

namespace {

QImage loadHere(const QString& path, int formatCode) {
    const FreeImageLibrary* fi = freeImage();
    if (!fi)
        return {};
    const QByteArray name = QFile::encodeName(path);
    // A damaged header can claim a picture of gigabytes: read the header alone first where the
    // format allows it, and refuse sizes no slide picture comes near.
    if (fi->FIFSupportsNoPixels(FREE_IMAGE_FORMAT(formatCode))) {
        FIBITMAP* header =
            fi->Load(FREE_IMAGE_FORMAT(formatCode), name.constData(), FIF_LOAD_NOPIXELS);
        if (!header) {
            if (lastError().isEmpty())
                RecordFreeImageError(QStringLiteral("FreeImage_Load could not read ") + path, true);
            return {};
        }
        const quint64 pixels = quint64(fi->GetWidth(header)) * fi->GetHeight(header);
        fi->Unload(header);
        if (pixels > kMaxFreeImagePixels) {
            RecordFreeImageError(QStringLiteral("%1 claims %2 pixels, more than this program reads")
                                     .arg(path)
                                     .arg(pixels),
                                 true);
            return {};
        }
    }
    FIBITMAP* dib = fi->Load(FREE_IMAGE_FORMAT(formatCode), name.constData(), 0);
    if (!dib) {
        if (lastError().isEmpty())
            RecordFreeImageError(QStringLiteral("FreeImage_Load could not read ") + path, true);
        return {};
    }
    QImage picture;
    const bool converted = FreeImage_BMP_From_DIB(dib, picture);
    // The converted picture owns its pixels: the FreeImage bitmap is not needed any more.
    fi->Unload(dib);
    return converted ? picture : QImage();
}

// The child's answer: a header (picture or not, length of the error text, width, height), the
// error text in UTF-8, then the pixel rows of 32 bits.
QByteArray encodeLoad(const QImage& picture, const QString& error) {
    const QByteArray text = error.toUtf8();
    const std::int32_t header[4] = {picture.isNull() ? 0 : 1, std::int32_t(text.size()),
                                    picture.width(), picture.height()};
    QByteArray bytes(reinterpret_cast<const char*>(header), sizeof header);
    bytes += text;
    for (int y = 0; y < picture.height(); ++y)
        bytes.append(reinterpret_cast<const char*>(picture.constScanLine(y)),
                     qsizetype(picture.width()) * 4);
    return bytes;
}

// Reads the child's answer back; false when it does not hold together.
bool decodeLoad(const QByteArray& bytes, QImage& picture, QString& error) {
    std::int32_t header[4];
    if (bytes.size() < qsizetype(sizeof header))
        return false;
    std::memcpy(header, bytes.constData(), sizeof header);
    const qsizetype textSize = header[1];
    if (textSize < 0 || textSize > bytes.size() - qsizetype(sizeof header))
        return false;
    error = QString::fromUtf8(bytes.constData() + sizeof header, textSize);
    const char* pixels = bytes.constData() + sizeof header + textSize;
    const qsizetype pixelBytes = bytes.size() - qsizetype(sizeof header) - textSize;
    if (header[0] != 1)
        return pixelBytes == 0;
    const int width = header[2], height = header[3];
    if (width <= 0 || height <= 0 || quint64(width) * quint64(height) > kMaxFreeImagePixels ||
        pixelBytes != qsizetype(width) * height * 4)
        return false;
    picture = QImage(width, height, QImage::Format_RGB32);
    if (picture.isNull())
        return false;
    for (int y = 0; y < height; ++y)
        std::memcpy(picture.scanLine(y), pixels + qsizetype(y) * width * 4, std::size_t(width) * 4);
    return true;
}

} // namespace

QImage FreeImageLoadPicture(const QString& path, int formatCode) {
    const FreeImageLibrary* fi = freeImage();
    if (!fi)
        return {};
    EnsureFreeImage();
    silenceTiff(fi->handle);
    // FreeImage's decoders can overrun their buffers on damaged files. The picture is decoded in
    // a child process, so that such a file costs only that child: the program goes on without
    // a picture.
    const ChildRun run = runInChild(
        [&] {
            lastError().clear();
            const QImage picture = loadHere(path, formatCode);
            return encodeLoad(picture, lastError());
        },
        20000, qsizetype(kMaxFreeImagePixels) * 4 + 65536 + 16);
    if (!run.started)
        return loadHere(path, formatCode);
    QImage picture;
    QString error;
    if (!run.completed || !decodeLoad(run.bytes, picture, error)) {
        RecordFreeImageError(
            QStringLiteral("FreeImage failed to decode %1: %2")
                .arg(path, run.completed ? QStringLiteral("its answer was damaged") : run.failure),
            true);
        return {};
    }
    if (!error.isEmpty())
        RecordFreeImageError(error, true);
    return picture;
}
