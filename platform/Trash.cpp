#include "platform/Trash.h"

#include <QDateTime>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

namespace {

// The user's trash in the freedesktop.org layout: files/ and info/.
QString homeTrash() {
    QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (data.isEmpty())
        data = QDir::homePath() + QStringLiteral("/.local/share");
    return data + QStringLiteral("/Trash");
}

bool copyRecursively(const QString& from, const QString& to) {
    const QFileInfo source(from);
    if (!source.isDir())
        return QFile::copy(from, to);
    if (!QDir().mkpath(to))
        return false;
    QDirIterator it(from, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        const QString entry = it.next();
        if (!copyRecursively(entry, to + QLatin1Char('/') + it.fileName()))
            return false;
    }
    return true;
}

bool removeForGood(const QFileInfo& info) {
    if (info.isDir() && !info.isSymLink())
        return QDir(info.absoluteFilePath()).removeRecursively();
    return QFile::remove(info.absoluteFilePath());
}

bool makeTrashFolders(const QString& trash) {
    return QDir().mkpath(trash + QStringLiteral("/files")) &&
           QDir().mkpath(trash + QStringLiteral("/info"));
}

} // namespace

bool trashAvailable() {
    return makeTrashFolders(homeTrash());
}

bool deleteForGood(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return false;
    return removeForGood(info);
}

bool moveToTrash(const QString& path) {
    const QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return false;

    const QString trash = homeTrash();
    const QString files = trash + QStringLiteral("/files");
    const QString infoDir = trash + QStringLiteral("/info");
    if (!makeTrashFolders(trash))
        return false;

    // A free name in the trash, with its .trashinfo made first so that no other move takes it.
    const QString base = info.fileName();
    QString name = base;
    QFile record;
    for (int n = 1;; ++n) {
        record.setFileName(infoDir + QLatin1Char('/') + name + QStringLiteral(".trashinfo"));
        if (!QFileInfo::exists(files + QLatin1Char('/') + name) &&
            record.open(QIODevice::WriteOnly | QIODevice::NewOnly))
            break;
        if (n > 10000)
            return false;
        name = base + QLatin1Char('.') + QString::number(n + 1);
    }
    record.write("[Trash Info]\nPath=");
    record.write(QUrl::toPercentEncoding(info.absoluteFilePath(), "/"));
    record.write("\nDeletionDate=");
    record.write(QDateTime::currentDateTime().toString(Qt::ISODate).toUtf8());
    record.write("\n");
    record.close();

    const QString target = files + QLatin1Char('/') + name;
    if (QDir().rename(info.absoluteFilePath(), target))
        return true;
    // Another file system: copy into the trash, then remove the original. Once the copy is whole
    // it stays, even when the original cannot be removed completely.
    if (!copyRecursively(info.absoluteFilePath(), target)) {
        QFileInfo copied(target);
        if (copied.exists())
            removeForGood(copied);
        record.remove();
        return false;
    }
    return removeForGood(info);
}
