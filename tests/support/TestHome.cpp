#include "support/TestHome.h"

#include "platform/AppPaths.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

TestHome::TestHome(bool withData) : mPrevious(qgetenv("TESSALY_HOME")) {
    qputenv("TESSALY_HOME", mDir.path().toLocal8Bit());
    if (withData)
        seedFolder(sourceDataFolder(), mDir.path());
}

TestHome::~TestHome() {
    if (mPrevious.isEmpty())
        qunsetenv("TESSALY_HOME");
    else
        qputenv("TESSALY_HOME", mPrevious);
}

QString TestHome::file(const QString& relative) const {
    return joinPath(mDir.path(), relative);
}

void TestHome::write(const QString& relative, const QByteArray& content) const {
    const QString target = file(relative);
    QDir().mkpath(QFileInfo(target).path());
    QFile f(target);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate))
        f.write(content);
}

QByteArray TestHome::read(const QString& relative) const {
    QFile f(file(relative));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QString sourceDataFolder() {
    return QStringLiteral(TESSALY_SOURCE_DATA);
}
