#include "platform/FolderSwap.h"

#include <QFile>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace {
QByteArray encoded(const QString& path) {
    return QFile::encodeName(path);
}

bool renamePath(const QString& from, const QString& to) {
    return ::rename(encoded(from).constData(), encoded(to).constData()) == 0;
}

void setError(QString* error, const QString& text) {
    if (error)
        *error = text + QStringLiteral(": ") + QString::fromLocal8Bit(std::strerror(errno));
}
} // namespace

bool swapFoldersByRenames(const QString& a, const QString& b, const QString& aside,
                          QString* error) {
    if (!renamePath(b, aside)) {
        setError(error, QStringLiteral("Cannot move %1 aside").arg(b));
        return false;
    }
    if (!renamePath(a, b)) {
        setError(error, QStringLiteral("Cannot move %1 to %2").arg(a, b));
        renamePath(aside, b);
        return false;
    }
    // Should this last step fail, `b` already holds the new folder and the old one stays at
    // `aside`, where the caller drops it as it would at `a`.
    renamePath(aside, a);
    return true;
}

bool swapFolders(const QString& a, const QString& b, const QString& aside, QString* error) {
    if (::renameat2(AT_FDCWD, encoded(a).constData(), AT_FDCWD, encoded(b).constData(),
                    RENAME_EXCHANGE) == 0)
        return true;
    if (errno != EINVAL && errno != ENOSYS && errno != ENOTSUP) {
        setError(error, QStringLiteral("Cannot exchange %1 and %2").arg(a, b));
        return false;
    }
    return swapFoldersByRenames(a, b, aside, error);
}

bool sameFileSystemEntry(const QString& a, const QString& b) {
    struct stat first {};
    struct stat second {};
    if (::stat(encoded(a).constData(), &first) != 0 ||
        ::lstat(encoded(b).constData(), &second) != 0)
        return false;
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}
