#pragma once

#include <QImage>
#include <QString>

// The platform's picture loader: reads a BMP, GIF or JPEG file whatever its name says. Raises
// Failure 53 when the file does not exist and 481 when it is no picture it can read.
QImage LoadPicture(const QString& path);

// Loads a picture file by the lower-cased extension of its name: bmp, gif, jpg and jpeg through
// LoadPicture; png, tif, tiff, tga, psd and pcx through FreeImage. A null picture for any other
// extension, a name without a dot, or a FreeImage file that cannot be decoded. A missing or
// damaged file on the first road shows the STR_NO_FILE_FOUND box and gives a null picture.
QImage LoadPictureFile(const QString& path);
