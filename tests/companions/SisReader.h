// Reads back an installation file in the SIS format before version 9, from the format's public
// description alone: header, languages, component name, requisites and every file with its
// contents, and the two checks the header carries (UID 4 and the CRC of the whole file).
#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>
#include <cstdint>

struct SisRead {
    struct Requisite {
        std::uint32_t uid = 0;
        std::uint16_t major = 0, minor = 0;
        std::uint32_t variant = 0;
        QStringList names;
    };
    struct File {
        QString source, target;
        QByteArray content;
    };
    std::uint32_t uid[4] = {};
    std::uint32_t uid4Expected = 0;
    std::uint16_t checksum = 0, checksumExpected = 0;
    std::uint16_t options = 0, type = 0, major = 0, minor = 0, drive = 0;
    std::uint32_t variant = 0, installerVersion = 0;
    QList<std::uint16_t> languages;
    QStringList names;
    QList<Requisite> requisites;
    QList<File> files; // in the order of installation
};

// Throws std::runtime_error when the file is not one (a pointer outside it, an unknown record).
SisRead readSis(const QByteArray& bytes);

// CRC-16 with polynomial 0x1021 and initial value 0, bit by bit.
std::uint16_t sisCrc(const QByteArray& bytes);
std::uint32_t sisUidCheck(std::uint32_t uid1, std::uint32_t uid2, std::uint32_t uid3);
