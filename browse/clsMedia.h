#pragma once

#include <QImage>
#include <QString>

// One file of a media list: its name inside the list's folder and, optionally, a picture that
// stands for it (the same picture for every file of one pattern).
class clsMedia {
public:
    QString FileName() const { return mFileName; }
    void setFileName(const QString& fileName) { mFileName = fileName; }
    QImage Picture() const { return mPicture; }
    void setPicture(const QImage& picture) { mPicture = picture; }

private:
    QString mFileName;
    QImage mPicture;
};
