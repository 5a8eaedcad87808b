#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>
#include <cstdint>

class clsMessage;
class QImage;

// The largest message carriers and phones take, by MMS content class, in bytes.
inline constexpr std::int64_t kDefaultMaxMessageSize = 307200;
// The preference MaxMessageSize (section "preferences"); the default when it is missing or not a
// positive number.
std::int64_t maxMessageSize();

// What a published message weighs, in bytes, by kind. `documents` is texts.xml and mms.smil,
// which carry the slide texts.
struct MessageSize {
    std::int64_t pictures = 0;
    std::int64_t sounds = 0;
    std::int64_t documents = 0;
    std::int64_t total() const { return pictures + sounds + documents; }
};

// How a message is published, for the estimate.
struct PublishSettings {
    QString messageFolder; // where relative sound names lie, with a closing "/"
    QString format = QStringLiteral("jpg");
    int jpegQuality = 90;
    bool convertSound = true;
    std::int32_t timeFormat = 0;
};

// Estimates the size of a message as publishing would write it, from the message in memory:
// each slide picture encoded in the chosen format (kept by the picture's contents, so an
// unchanged slide costs nothing the next time), each sound as AMR from its length, the texts
// and the presentation built as publishing builds them.
class clsSizeEstimator {
public:
    MessageSize Estimate(const clsMessage& message, const PublishSettings& settings);
    // The bytes of one picture as publishing writes it in `format` ("jpg", "gif", "bmp").
    std::int64_t PictureSize(const QImage& picture, const QString& format, int jpegQuality);
    // The bytes of one sound file as published: a sound libsndfile reads becomes AMR MR102
    // (a 6-byte header, then 27 bytes for each 20 ms begun) when `convert` and it is a WAV file;
    // any other file keeps its size. 0 for a file that is missing or holds no readable sound.
    std::int64_t SoundSize(const QString& path, bool convert);
    void clear();

private:
    QHash<qint64, QByteArray> mDigests;        // by QImage::cacheKey
    QHash<QByteArray, std::int64_t> mPictures; // picture digest + format + quality
    QHash<QString, std::int64_t> mSounds;      // path + modification time + size + convert
};

// The bytes of a publication: the files of `fileList` (";"-separated, as the manager lists
// them) in `outputFolder` that go into the packages, by kind. The slide texts travel in
// texts.xml and count there.
MessageSize publishedSize(const QString& outputFolder, const QString& fileList);

// "42 KB": bytes in whole kilobytes (1024), rounded up.
QString kilobytes(std::int64_t bytes);
