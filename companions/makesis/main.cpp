// makesis in.pkg [out.sis]: turns a package description into an installation file for phones
// before SIS version 9. The sources named in the description are read relative to its folder;
// the output goes beside it under its base name unless named. On a mistake it says
// "file:line: reason" on stderr, writes nothing and ends with 1.
#include "companions/makesis/PkgParser.h"
#include "companions/makesis/SisWriter.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <cstdio>

namespace {

void report(const QString& where, const QString& reason) {
    std::fprintf(stderr, "%s: %s\n", QFile::encodeName(where).constData(),
                 reason.toUtf8().constData());
}

QByteArray readBytes(const QString& path, int line) {
    QFile file(path);
    if (QFileInfo(path).isDir())
        throw PkgError(line, QStringLiteral("cannot read \"%1\": it is a folder").arg(path));
    if (!file.open(QIODevice::ReadOnly))
        throw PkgError(line,
                       QStringLiteral("cannot read \"%1\": %2").arg(path, file.errorString()));
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        throw PkgError(line,
                       QStringLiteral("cannot read \"%1\": %2").arg(path, file.errorString()));
    return bytes;
}

// UTF-8, or UTF-16 when the text starts with its byte order mark.
QString readText(const QString& path) {
    const QByteArray bytes = readBytes(path, 0);
    QStringDecoder decoder(
        QStringConverter::encodingForData(bytes).value_or(QStringConverter::Utf8),
        QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        throw PkgError(0, QStringLiteral("the description is neither UTF-8 nor UTF-16 text"));
    return text;
}

// A source as written, relative to the description's folder; a name written with "\" that is
// not found as it stands is looked for with "/".
QString resolveSource(const QDir& folder, const QString& source) {
    const QString path = QDir::cleanPath(folder.absoluteFilePath(source));
    if (QFileInfo::exists(path) || !source.contains(QLatin1Char('\\')))
        return path;
    const QString slashed = QDir::cleanPath(
        folder.absoluteFilePath(QString(source).replace(QLatin1Char('\\'), QLatin1Char('/'))));
    return QFileInfo::exists(slashed) ? slashed : path;
}

QList<SisFileContent> readFiles(const PackageDescription& pkg, const QDir& folder) {
    QList<SisFileContent> files;
    for (const PkgFile& file : pkg.files) {
        const QString path = resolveSource(folder, file.source);
        files << SisFileContent{path, file.target, readBytes(path, file.line)};
    }
    return files;
}

bool writeFile(const QString& path, const QByteArray& bytes) {
    QSaveFile file(path);
    if (file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.commit())
        return true;
    report(path, QStringLiteral("cannot be written: %1").arg(file.errorString()));
    return false;
}

} // namespace

int main(int argc, char** argv) {
    if (argc < 2 || argc > 3) {
        std::fprintf(stderr, "usage: makesis in.pkg [out.sis]\n");
        return 2;
    }
    const QString pkgPath = QFile::decodeName(argv[1]);
    const QFileInfo pkgInfo(pkgPath);
    const QString sisPath =
        argc == 3 ? QFile::decodeName(argv[2])
                  : pkgInfo.dir().filePath(pkgInfo.completeBaseName() + QStringLiteral(".sis"));
    if (QFileInfo(sisPath).absoluteFilePath() == pkgInfo.absoluteFilePath()) {
        report(pkgPath, QStringLiteral("the output would replace the description"));
        return 1;
    }
    QByteArray sis;
    try {
        const PackageDescription pkg = parsePkg(readText(pkgPath));
        sis = buildSis(pkg, readFiles(pkg, pkgInfo.absoluteDir()));
    } catch (const PkgError& error) {
        report(error.line() > 0 ? QStringLiteral("%1:%2").arg(pkgPath).arg(error.line()) : pkgPath,
               error.reason());
        return 1;
    } catch (const SisError& error) {
        report(sisPath, QString::fromUtf8(error.what()));
        return 1;
    }
    return writeFile(sisPath, sis) ? 0 : 1;
}
