#include "platform/AppPaths.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

namespace {

QString exeFolder() {
    if (QCoreApplication::instance())
        return QCoreApplication::applicationDirPath();
    return QFileInfo(QStringLiteral("/proc/self/exe"))
        .canonicalFilePath()
        .section(QLatin1Char('/'), 0, -2);
}

bool holdsData(const QString& folder) {
    return QFileInfo::exists(joinPath(folder, exeBaseName() + QStringLiteral(".xml")));
}

bool isPortable(const QString& folder) {
    return QFileInfo::exists(joinPath(folder, portableMarkerName()));
}

QString userDataFolder() {
    QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.local/share");
    return joinPath(base, QStringLiteral("tessaly"));
}

} // namespace

QString exeBaseName() {
    const QByteArray overridden = qgetenv("TESSALY_EXE_NAME");
    if (!overridden.isEmpty())
        return QString::fromLocal8Bit(overridden);
    QString path = QCoreApplication::instance()
                       ? QCoreApplication::applicationFilePath()
                       : QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath();
    QString base = QFileInfo(path).completeBaseName();
    return base.isEmpty() ? QStringLiteral("tessaly") : base;
}

QString portableMarkerName() {
    return exeBaseName() + QStringLiteral(".portable");
}

QString installedDataFolderFor(const QString& executableFolder) {
    const QString shared = QDir::cleanPath(executableFolder + QStringLiteral("/../share/tessaly"));
    if (holdsData(shared))
        return shared;
    if (isPortable(executableFolder) && holdsData(executableFolder))
        return QDir::cleanPath(executableFolder);
    return {};
}

QString installedDataFolder() {
    return installedDataFolderFor(exeFolder());
}

QString appFolderFor(const QString& executableFolder) {
    const QByteArray home = qgetenv("TESSALY_HOME");
    if (!home.isEmpty())
        return QDir::cleanPath(QString::fromLocal8Bit(home));
    if (isPortable(executableFolder))
        return QDir::cleanPath(executableFolder);
    const QString folder = userDataFolder();
    QDir().mkpath(folder);
    return folder;
}

QString appFolder() {
    return appFolderFor(exeFolder());
}

bool seedFolder(const QString& from, const QString& to) {
    bool ok = QDir().mkpath(to);
    QDirIterator it(from, QDir::Files | QDir::Hidden | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    const QDir source(from);
    while (it.hasNext()) {
        const QString file = it.next();
        const QString target = joinPath(to, source.relativeFilePath(file));
        if (QFileInfo::exists(target))
            continue;
        ok = QDir().mkpath(QFileInfo(target).path()) && ok;
        ok = QFile::copy(file, target) && ok;
    }
    return ok;
}

QString toSlashes(const QString& path) {
    QString result = path;
    result.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return result;
}

QString joinPath(const QString& a, const QString& b) {
    if (a.isEmpty())
        return toSlashes(b);
    QString left = toSlashes(a);
    QString right = toSlashes(b);
    while (left.size() > 1 && left.endsWith(QLatin1Char('/')))
        left.chop(1);
    while (right.startsWith(QLatin1Char('/')))
        right.remove(0, 1);
    if (left == QLatin1String("/"))
        return left + right;
    return right.isEmpty() ? left + QLatin1Char('/') : left + QLatin1Char('/') + right;
}

QString withTrailingSlash(const QString& path) {
    QString result = toSlashes(path);
    if (!result.endsWith(QLatin1Char('/')))
        result += QLatin1Char('/');
    return result;
}

QString resolveAppPath(const QString& value, bool folder) {
    QString path = value;
    if (path.startsWith(QLatin1Char('\\')))
        path = joinPath(appFolder(), path);
    path = toSlashes(path);
    return folder && !path.isEmpty() ? withTrailingSlash(path) : path;
}

QString resolveDataPath(const QString& value, bool folder) {
    if (!value.startsWith(QLatin1Char('\\')))
        return resolveAppPath(value, folder);
    QString path = joinPath(appFolder(), value);
    if (!QFileInfo::exists(path)) {
        const QString data = installedDataFolder();
        if (!data.isEmpty())
            path = joinPath(data, value);
    }
    return folder ? withTrailingSlash(path) : path;
}

QString fileNameOf(const QString& path) {
    const QString p = toSlashes(path);
    return p.mid(p.lastIndexOf(QLatin1Char('/')) + 1);
}
