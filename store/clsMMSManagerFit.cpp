// Fitting a publication under the largest message size: only the published copies change.
#include "imaging/DIWriteJpg.h"
#include "platform/StatusSink.h"
#include "platform/modText.h"
#include "store/clsMMSManager.h"
#include "store/modSizeEstimate.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <vector>

namespace {
// The qualities tried after the 90 publishing writes, best first; 50 is the floor.
constexpr int kFitQualities[] = {80, 70, 60, 50};

struct PublishedPicture {
    QString path;   // in the folder mms
    QString source; // the slide picture in the message folder
    QByteArray original;
};

// The JPEG pictures of a publication with their sources and their bytes as first written.
std::vector<PublishedPicture> jpegPictures(const QString& outputFolder,
                                           const QString& messageFolder, const QString& fileList) {
    std::vector<PublishedPicture> pictures;
    for (const QString& entry : fileList.split(QLatin1Char(';'), Qt::SkipEmptyParts)) {
        const QFileInfo info(entry);
        if (info.suffix().toLower() != QLatin1String("jpg"))
            continue;
        QFile file(outputFolder + entry);
        if (!file.open(QIODevice::ReadOnly))
            continue;
        pictures.push_back({outputFolder + entry,
                            messageFolder + info.completeBaseName() + QStringLiteral(".bmp"),
                            file.readAll()});
    }
    return pictures;
}

bool encodeAll(const std::vector<PublishedPicture>& pictures, int quality) {
    for (const PublishedPicture& picture : pictures)
        if (DIWriteJpg(QFile::encodeName(picture.path), QFile::encodeName(picture.source), quality,
                       0) != 0)
            return false;
    return true;
}

void restoreAll(const std::vector<PublishedPicture>& pictures) {
    for (const PublishedPicture& picture : pictures) {
        QSaveFile file(picture.path);
        if (file.open(QIODevice::WriteOnly) &&
            file.write(picture.original) == picture.original.size())
            file.commit();
    }
}

// "The message is 52 KB, 22 KB above ...": the size as written, by kind.
QString tooLargeText(const MessageSize& size, std::int64_t budget) {
    return localTextPar(QStringLiteral("STR_SIZE_TOO_LARGE"),
                        {kilobytes(size.total()), kilobytes(size.total() - budget),
                         kilobytes(budget), kilobytes(size.pictures), kilobytes(size.sounds),
                         kilobytes(size.documents)});
}
} // namespace

void clsMMSManager::fitToBudget(const PublishTarget& target) {
    const std::int64_t budget = mMaxMessageSize > 0 ? mMaxMessageSize : maxMessageSize();
    const MessageSize written = publishedSize(target.outputFolder, mFileList);
    if (written.total() <= budget)
        return;
    const std::vector<PublishedPicture> pictures =
        target.format.toLower() == QLatin1String("jpg")
            ? jpegPictures(target.outputFolder, target.messageFolder, mFileList)
            : std::vector<PublishedPicture>{};
    if (pictures.empty()) {
        mFitNote = tooLargeText(written, budget);
        return;
    }
    std::int64_t lowest = written.total();
    for (const int quality : kFitQualities) {
        mSink->breathe();
        if (!encodeAll(pictures, quality))
            break;
        lowest = publishedSize(target.outputFolder, mFileList).total();
        if (lowest <= budget) {
            mFitNote = localTextPar(QStringLiteral("STR_SIZE_FITTED"),
                                    {QString::number(quality), kilobytes(budget)});
            return;
        }
    }
    // Lower quality alone cannot make it fit: the pictures stay as first written, and the text
    // says how far even the lowest quality leaves the message above the size.
    restoreAll(pictures);
    mFitNote = tooLargeText(written, budget) + QLatin1Char(' ') +
               localTextPar(QStringLiteral("STR_SIZE_EVEN_AT_LOWEST"),
                            {QString::number(kFitQualities[std::size(kFitQualities) - 1]),
                             kilobytes(lowest - budget)});
}
