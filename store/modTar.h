#pragma once

#include <QByteArray>
#include <QStringList>
#include <cstdint>

// The tar archiver the publisher packs templates with. A command line in the archiver's own
// words: options, then the archive, then the files, quoted where they hold blanks:
//
//     --use-directory=0 --display-dialog=0 -fc "/out/mms.tpl" "/out/a.jpg" "/out/b c.amr"
//
// `-c` creates, `-f` names the archive (the next word), `--use-directory=0` stores each file
// under its bare name (1: under the path as given, less a leading "/"), `--display-dialog` is
// accepted and has no effect. The archive is ustar, written whole or not at all.

// What Tar gave: 0 success, otherwise what went wrong.
enum TarResult : int {
    TarOk = 0,
    TarBadCommand = 0x8001,     // an unknown option, no archive, no files
    TarUnreadableFile = 0x8002, // a file to pack cannot be read
    TarUnwritableArchive = 0x8003,
    TarBadEntry = 0x8004, // a name the archive cannot hold (over 100 bytes as a bare name)
};

// Runs `commandLine`. `windowHandle` is accepted for the callers' sake. Up to `outputSize`
// bytes of `outputBuffer` receive the outcome as text, ended by a NUL (nothing is written when
// the buffer is null or `outputSize` is 0).
int Tar(std::intptr_t windowHandle, const QByteArray& commandLine, char* outputBuffer,
        std::uint32_t outputSize);

// Writes `files` into a ustar archive at `archivePath`, each under its bare name when
// `bareNames`. The outcome's text, when not empty, says what went wrong.
int writeTarArchive(const QString& archivePath, const QStringList& files, bool bareNames,
                    QString& problem);
