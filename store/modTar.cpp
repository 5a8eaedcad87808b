#include "store/modTar.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <cstring>

#include <archive.h>
#include <archive_entry.h>

namespace {

struct TarCommand {
    QString archive;
    QStringList files;
    bool bareNames = false;
};

// Reads the words of the command line into `command`; false (with `problem`) when they are not
// a create command with an archive and at least one file.
bool parseCommand(const QByteArray& commandLine, TarCommand& command, QString& problem) {
    const QStringList words = QProcess::splitCommand(QString::fromLocal8Bit(commandLine));
    bool create = false;
    bool archiveNext = false;
    for (const QString& word : words) {
        if (archiveNext) {
            command.archive = word;
            archiveNext = false;
        } else if (word.startsWith(QLatin1String("--"))) {
            const QString name = word.section(QLatin1Char('='), 0, 0);
            const QString value = word.section(QLatin1Char('='), 1);
            if (name == QLatin1String("--use-directory")) {
                command.bareNames = value == QLatin1String("0");
            } else if (name != QLatin1String("--display-dialog")) {
                problem = QStringLiteral("unknown option %1").arg(word);
                return false;
            }
        } else if (word.startsWith(QLatin1Char('-')) && word.size() > 1) {
            for (const QChar letter : word.mid(1)) {
                if (letter == QLatin1Char('c'))
                    create = true;
                else if (letter == QLatin1Char('f'))
                    archiveNext = true;
                else if (letter != QLatin1Char('v')) {
                    problem = QStringLiteral("unknown option -%1").arg(letter);
                    return false;
                }
            }
        } else {
            command.files << word;
        }
    }
    if (!create || command.archive.isEmpty())
        problem = QStringLiteral("a create command needs -c and -f with an archive");
    else if (command.files.isEmpty())
        problem = QStringLiteral("no files to pack");
    return problem.isEmpty();
}

QString archiveProblem(archive* writer) {
    const char* text = archive_error_string(writer);
    return text ? QString::fromLocal8Bit(text) : QStringLiteral("the archive cannot be written");
}

// The name a file is stored under.
QString entryName(const QString& file, bool bareNames) {
    if (bareNames)
        return QFileInfo(file).fileName();
    QString name = file;
    while (name.startsWith(QLatin1Char('/')))
        name.remove(0, 1);
    return name;
}

// Adds one file to the archive; a result other than TarOk with `problem`.
int addFile(archive* writer, const QString& file, bool bareNames, QString& problem) {
    QFile input(file);
    const QFileInfo info(file);
    if (!info.isFile() || !input.open(QIODevice::ReadOnly)) {
        problem = QStringLiteral("cannot read %1").arg(file);
        return TarUnreadableFile;
    }
    const QByteArray bytes = input.readAll();
    if (input.error() != QFileDevice::NoError) {
        problem = QStringLiteral("cannot read %1").arg(file);
        return TarUnreadableFile;
    }
    archive_entry* entry = archive_entry_new();
    archive_entry_set_pathname(entry, QFile::encodeName(entryName(file, bareNames)).constData());
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_entry_set_size(entry, bytes.size());
    archive_entry_set_mtime(entry, info.lastModified().toSecsSinceEpoch(), 0);
    const int header = archive_write_header(writer, entry);
    archive_entry_free(entry);
    if (header != ARCHIVE_OK) {
        problem = QStringLiteral("%1: %2").arg(file, archiveProblem(writer));
        return TarBadEntry;
    }
    if (archive_write_data(writer, bytes.constData(), std::size_t(bytes.size())) != bytes.size()) {
        problem = archiveProblem(writer);
        return TarUnwritableArchive;
    }
    return TarOk;
}

void report(const QString& text, char* buffer, std::uint32_t size) {
    if (!buffer || size == 0)
        return;
    const QByteArray bytes = text.toLocal8Bit();
    const std::size_t n = std::min<std::size_t>(std::size_t(bytes.size()), size - 1);
    std::memcpy(buffer, bytes.constData(), n);
    buffer[n] = '\0';
}

} // namespace

int writeTarArchive(const QString& archivePath, const QStringList& files, bool bareNames,
                    QString& problem) {
    // Written beside the archive first, so that a failure leaves no half archive in its place.
    const QString temporary =
        archivePath + QStringLiteral(".part-%1")
                          .arg(QRandomGenerator::global()->generate(), 8, 16, QLatin1Char('0'));
    archive* writer = archive_write_new();
    archive_write_set_format_ustar(writer);
    int result = TarOk;
    if (archive_write_open_filename(writer, QFile::encodeName(temporary).constData()) !=
        ARCHIVE_OK) {
        problem = archiveProblem(writer);
        result = TarUnwritableArchive;
    }
    for (const QString& file : files) {
        if (result != TarOk)
            break;
        result = addFile(writer, file, bareNames, problem);
    }
    if (archive_write_close(writer) != ARCHIVE_OK && result == TarOk) {
        problem = archiveProblem(writer);
        result = TarUnwritableArchive;
    }
    archive_write_free(writer);
    if (result == TarOk && std::rename(QFile::encodeName(temporary).constData(),
                                       QFile::encodeName(archivePath).constData()) != 0) {
        problem = QStringLiteral("cannot write %1").arg(archivePath);
        result = TarUnwritableArchive;
    }
    if (result != TarOk)
        QFile::remove(temporary);
    return result;
}

int Tar(std::intptr_t windowHandle, const QByteArray& commandLine, char* outputBuffer,
        std::uint32_t outputSize) {
    (void)windowHandle; // no dialogue is ever shown
    TarCommand command;
    QString problem;
    int result = TarBadCommand;
    if (parseCommand(commandLine, command, problem))
        result = writeTarArchive(command.archive, command.files, command.bareNames, problem);
    report(result == TarOk ? QStringLiteral("%1 file(s) packed into %2")
                                 .arg(command.files.size())
                                 .arg(command.archive)
                           : problem,
           outputBuffer, outputSize);
    return result;
}
