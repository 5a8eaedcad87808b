#include "platform/Trash.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

bool moveToTrash(const QString& path) {
    QFileInfo info(path);
    if (!info.exists() && !info.isSymLink())
        return false;
    if (QFile::moveToTrash(path))
        return true;
    if (info.isDir() && !info.isSymLink())
        return QDir(path).removeRecursively();
    return QFile::remove(path);
}
