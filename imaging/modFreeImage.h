#pragma once

#include <QImage>
#include <QString>

struct FIBITMAP;

// The bridge to FreeImage, which reads PNG, TIFF, Targa, Photoshop and PCX pictures.

// Starts FreeImage and routes its messages to RecordFreeImageError. libtiff's warnings are
// silenced and its errors recorded the same way.
void InitFreeImage(bool loadLocalPluginsOnly);
void DeInitFreeImage();
// Starts FreeImage once for the process if nobody did.
void EnsureFreeImage();

// Turns a FreeImage bitmap into a picture in `bitmap` (emptied first). On failure records the
// reason and returns false.
bool FreeImage_BMP_From_DIB(FIBITMAP* dib, QImage& bitmap);

// Stores `text` as the last FreeImage fault; with `keepFirst` a fault already stored stays.
void RecordFreeImageError(const QString& text, bool keepFirst);
QString lastFreeImageError();
void clearFreeImageError();

// Loads `path` with FreeImage in the format `formatCode`; a null picture when it cannot.
QImage FreeImageLoadPicture(const QString& path, int formatCode);

// FreeImage's format codes used by the loader.
namespace FreeImageFormat {
inline constexpr int PCX = 10;
inline constexpr int PNG = 13;
inline constexpr int TARGA = 17;
inline constexpr int TIFF = 18;
inline constexpr int PSD = 20;
} // namespace FreeImageFormat
