// Writes an installation file in the SIS format of phones before SIS version 9 (EPOC release 6):
// header with its UIDs and checksum, languages, file records, requisites, the component name,
// then the names and the file contents.
#pragma once

#include "companions/makesis/PkgParser.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <stdexcept>

struct SisFileContent {
    QString sourceName; // where the file was read, kept for information only
    QString target;     // where the phone puts it
    QByteArray data;
};

// What cannot be written as a SIS file (too large for its 32-bit offsets, too many files).
class SisError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// The SIS file of a package whose files, in the order of the description, hold `files`.
// Contents are compressed unless the package asks for NOCOMPRESS.
QByteArray buildSis(const PackageDescription& pkg, const QList<SisFileContent>& files);
