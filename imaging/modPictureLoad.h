#pragma once

#include "platform/StatusSink.h"

#include <QImage>
#include <QString>

// The platform's picture loader: reads a BMP, GIF or JPEG file whatever its name says. Raises
// Failure 53 when the file does not exist and 481 when it is no picture it can read, a BMP
// whose pixels are cut short included; the description says why in words.
QImage LoadPicture(const QString& path);

// What reading a picture file gave.
struct PictureFile {
    QImage picture; // null when there is none
    // The file is missing or damaged on the platform road: the program shows the
    // NoFileFoundText box for it. Other failures (no extension, an unknown one, a file
    // FreeImage cannot decode) leave the picture empty without a box.
    bool unreadable = false;
    QString reason; // why there is no picture, an English sentence for logs and tools
};

// Reads a picture file by the lower-cased extension of its name: bmp, gif, jpg and jpeg through
// LoadPicture; png, tif, tiff, tga, psd and pcx through FreeImage. Shows nothing.
PictureFile ReadPictureFile(const QString& path);

// The text of the box for a picture that cannot be read: STR_NO_FILE_FOUND, the file name.
QString NoFileFoundText(const QString& path);

// ReadPictureFile's picture; for an unreadable file `sink` is given the NoFileFoundText box
// (information style, the application's title). The window passes a sink that shows it.
QImage LoadPictureFile(const QString& path, StatusSink& sink = quietSink());
