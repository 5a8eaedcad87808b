// Reads a package description (.pkg): the lines that say which languages, which package, which
// components it needs and which files it installs where.
//
//   ; a comment
//   &EN,FR                                          languages (EN when there is no such line)
//   #{"Name","Nom"},(0x101F8A52),1,0,0,TYPE=SISUPGRADE   the package: one name per language,
//                                                   UID, major, minor, build and options
//   (0x101F80BE),1,0,0,{"Product","Produit"}        a component the package needs
//   "source"-"!:\target\path"[,FF]                  a file, its source relative to the .pkg
//
// Texts are in double quotes, a quote inside one is written twice.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <stdexcept>

// What a line of the description cannot be read as; line 0 is the whole description.
class PkgError : public std::runtime_error {
public:
    PkgError(int line, const QString& reason);
    int line() const { return mLine; }
    const QString& reason() const { return mReason; }

private:
    int mLine;
    QString mReason;
};

struct PkgVersion {
    std::uint32_t uid = 0;
    std::uint16_t major = 0;
    std::uint16_t minor = 0;
    std::uint32_t build = 0;
    QStringList names; // one per language, in the order of the languages
};

struct PkgFile {
    int line = 0;
    QString source; // as written
    QString target;
};

// Header options and types of SIS files.
enum PkgOption : std::uint16_t {
    IsUnicode = 0x0001,
    IsDistributable = 0x0002,
    NoCompress = 0x0008,
    ShutdownApps = 0x0010
};

struct PackageDescription {
    QList<std::uint16_t> languages; // SIS language numbers (1 is EN)
    PkgVersion package;
    std::uint16_t options = 0;
    std::uint16_t type = 0; // 0 SISAPP ... 5 SISUPGRADE
    QList<PkgVersion> requisites;
    QList<PkgFile> files;
};

// Throws PkgError for the first line that is wrong.
PackageDescription parsePkg(const QString& text);
