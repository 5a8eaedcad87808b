#include "companions/makesis/SisWriter.h"

#include "companions/makesis/Crc16.h"

#include <QStringEncoder>
#include <limits>
#include <zlib.h>

namespace {

constexpr std::uint32_t kUid2Release6 = 0x10003A12;
constexpr std::uint32_t kUid3 = 0x10000419;
constexpr std::uint32_t kInstallerVersion = 200;
constexpr std::uint16_t kAnyDrive = '!';
constexpr std::uint32_t kHeaderSize = 100;
constexpr int kChecksumOffset = 16;
constexpr int kReservedBytes = 16;
// Record type, file type, details, source and target (length, pointer), one length and pointer,
// the original length, MIME type (length, pointer).
constexpr std::uint32_t kFileRecordSize = 12 * 4;

QByteArray utf16(const QString& text) {
    QStringEncoder encoder(QStringConverter::Utf16LE);
    return encoder.encode(text);
}

QByteArray compressed(const QByteArray& data) {
    uLongf size = compressBound(static_cast<uLong>(data.size()));
    QByteArray out(static_cast<qsizetype>(size), Qt::Uninitialized);
    if (compress2(reinterpret_cast<Bytef*>(out.data()), &size,
                  reinterpret_cast<const Bytef*>(data.constData()), static_cast<uLong>(data.size()),
                  Z_BEST_COMPRESSION) != Z_OK)
        throw SisError("a file cannot be compressed");
    out.resize(static_cast<qsizetype>(size));
    return out;
}

// A piece of the resource data: where it lies and how long it is.
struct Span {
    std::uint32_t length = 0;
    std::uint32_t pointer = 0;
};

// Hands out the offsets of the file from its start; all must fit in 32 bits.
class Layout {
public:
    explicit Layout(std::uint64_t start) : mEnd(start) {}
    Span place(qsizetype length) {
        Span span{static_cast<std::uint32_t>(length), static_cast<std::uint32_t>(mEnd)};
        mEnd += static_cast<std::uint64_t>(length);
        if (mEnd > std::numeric_limits<std::uint32_t>::max())
            throw SisError("the package would be larger than 4 GiB");
        return span;
    }
    std::uint32_t offset() { return place(0).pointer; }

private:
    std::uint64_t mEnd;
};

class Writer {
public:
    void u16(std::uint16_t value) {
        mBytes.append(static_cast<char>(value & 0xff));
        mBytes.append(static_cast<char>(value >> 8));
    }
    void u32(std::uint32_t value) {
        u16(static_cast<std::uint16_t>(value & 0xffff));
        u16(static_cast<std::uint16_t>(value >> 16));
    }
    void span(Span s) {
        u32(s.length);
        u32(s.pointer);
    }
    void bytes(const QByteArray& data) { mBytes.append(data); }
    QByteArray& result() { return mBytes; }

private:
    QByteArray mBytes;
};

// One file as it is stored, with the places of its names and contents.
struct StoredFile {
    QByteArray source;
    QByteArray target;
    QByteArray data;
    std::uint32_t originalLength = 0;
    Span sourceSpan;
    Span targetSpan;
    Span dataSpan;
};

struct NamedVersion {
    const PkgVersion* version = nullptr;
    QList<QByteArray> names;
    QList<Span> spans;
};

NamedVersion encodeNames(const PkgVersion& version) {
    NamedVersion named{&version, {}, {}};
    for (const QString& name : version.names)
        named.names << utf16(name);
    return named;
}

// The whole file: the installer copies the file records in the reverse of their stored order,
// so the description's first file is stored last.
class SisBuilder {
public:
    SisBuilder(const PackageDescription& pkg, const QList<SisFileContent>& files)
        : mPkg(pkg), mCompress(!(pkg.options & NoCompress)) {
        if (files.size() > 0xffff || pkg.requisites.size() > 0xffff)
            throw SisError("a SIS file holds at most 65535 files and 65535 requisites");
        for (auto file = files.crbegin(); file != files.crend(); ++file) {
            StoredFile stored;
            stored.source = utf16(file->sourceName);
            stored.target = utf16(file->target);
            if (file->data.size() > std::numeric_limits<std::uint32_t>::max())
                throw SisError("a file is larger than 4 GiB");
            stored.originalLength = static_cast<std::uint32_t>(file->data.size());
            stored.data = mCompress ? compressed(file->data) : file->data;
            mFiles << stored;
        }
        for (const PkgVersion& requisite : pkg.requisites)
            mRequisites << encodeNames(requisite);
        mComponent = encodeNames(pkg.package);
    }

    QByteArray build() {
        placeEverything();
        writeHeader();
        writeRecords();
        writeResources();
        fillInChecksum(mOut.result());
        return mOut.result();
    }

private:
    std::uint16_t languageCount() const {
        return static_cast<std::uint16_t>(mPkg.languages.size());
    }

    // Records first, then the string block (file names, requisite names, component name), then
    // the contents, so that what the phone keeps after installing stops before the contents.
    void placeEverything() {
        Layout layout(kHeaderSize);
        mLanguagesAt = layout.place(2 * languageCount()).pointer;
        mFilesAt = layout.place(mFiles.size() * kFileRecordSize).pointer;
        mRequisitesAt = layout.place(mRequisites.size() * (12 + 8 * languageCount())).pointer;
        mComponentAt = layout.place(8 * languageCount()).pointer;
        mCapabilitiesAt = layout.offset();
        for (StoredFile& file : mFiles) {
            file.sourceSpan = layout.place(file.source.size());
            file.targetSpan = layout.place(file.target.size());
        }
        for (NamedVersion& named : mRequisites)
            placeNames(layout, named);
        placeNames(layout, mComponent);
        for (StoredFile& file : mFiles) {
            file.dataSpan = layout.place(file.data.size());
            mInstalledSize += file.originalLength;
        }
    }

    static void placeNames(Layout& layout, NamedVersion& named) {
        for (const QByteArray& name : named.names)
            named.spans << layout.place(name.size());
    }

    void writeHeader() {
        const std::uint32_t uid1 = mPkg.package.uid;
        mOut.u32(uid1);
        mOut.u32(kUid2Release6);
        mOut.u32(kUid3);
        mOut.u32(uidChecksum(uid1, kUid2Release6, kUid3));
        mOut.u16(0); // checksum, filled in at the end
        mOut.u16(languageCount());
        mOut.u16(static_cast<std::uint16_t>(mFiles.size()));
        mOut.u16(static_cast<std::uint16_t>(mRequisites.size()));
        mOut.u16(0); // installation language, set by the phone
        mOut.u16(0); // installation files, set by the phone
        mOut.u16(kAnyDrive);
        mOut.u16(0); // capabilities
        mOut.u32(kInstallerVersion);
        mOut.u16(mPkg.options | IsUnicode); // the names are written in UTF-16
        mOut.u16(mPkg.type);
        mOut.u16(mPkg.package.major);
        mOut.u16(mPkg.package.minor);
        mOut.u32(mPkg.package.build);
        mOut.u32(mLanguagesAt);
        mOut.u32(mFilesAt);
        mOut.u32(mRequisitesAt);
        mOut.u32(0); // no certificates
        mOut.u32(mComponentAt);
        mOut.u32(0); // no signature
        mOut.u32(mCapabilitiesAt);
        mOut.u32(0); // installed space, set by the phone
        mOut.u32(static_cast<std::uint32_t>(
            std::min<std::uint64_t>(mInstalledSize, std::numeric_limits<std::uint32_t>::max())));
        mOut.bytes(QByteArray(kReservedBytes, '\0'));
    }

    void writeRecords() {
        for (const std::uint16_t language : mPkg.languages)
            mOut.u16(language);
        for (const StoredFile& file : mFiles) {
            mOut.u32(0); // a simple file line
            mOut.u32(0); // a standard file
            mOut.u32(0); // no details
            mOut.span(file.sourceSpan);
            mOut.span(file.targetSpan);
            mOut.span(file.dataSpan);
            mOut.u32(file.originalLength);
            mOut.span({0, file.targetSpan.pointer + file.targetSpan.length}); // no MIME type
        }
        for (const NamedVersion& requisite : mRequisites) {
            mOut.u32(requisite.version->uid);
            mOut.u16(requisite.version->major);
            mOut.u16(requisite.version->minor);
            mOut.u32(requisite.version->build);
            writeNameSpans(requisite);
        }
        writeNameSpans(mComponent);
    }

    void writeNameSpans(const NamedVersion& named) {
        for (const Span& span : named.spans)
            mOut.u32(span.length);
        for (const Span& span : named.spans)
            mOut.u32(span.pointer);
    }

    void writeResources() {
        for (const StoredFile& file : mFiles) {
            mOut.bytes(file.source);
            mOut.bytes(file.target);
        }
        for (const NamedVersion& requisite : mRequisites)
            for (const QByteArray& name : requisite.names)
                mOut.bytes(name);
        for (const QByteArray& name : mComponent.names)
            mOut.bytes(name);
        for (const StoredFile& file : mFiles)
            mOut.bytes(file.data);
    }

    // The CRC of everything but the checksum's own two bytes.
    static void fillInChecksum(QByteArray& bytes) {
        const QByteArrayView all(bytes);
        const std::uint16_t checksum =
            crc16(all.sliced(kChecksumOffset + 2), crc16(all.first(kChecksumOffset)));
        bytes[kChecksumOffset] = static_cast<char>(checksum & 0xff);
        bytes[kChecksumOffset + 1] = static_cast<char>(checksum >> 8);
    }

    const PackageDescription& mPkg;
    const bool mCompress;
    QList<StoredFile> mFiles;
    QList<NamedVersion> mRequisites;
    NamedVersion mComponent;
    std::uint32_t mLanguagesAt = 0;
    std::uint32_t mFilesAt = 0;
    std::uint32_t mRequisitesAt = 0;
    std::uint32_t mComponentAt = 0;
    std::uint32_t mCapabilitiesAt = 0;
    std::uint64_t mInstalledSize = 0;
    Writer mOut;
};

} // namespace

QByteArray buildSis(const PackageDescription& pkg, const QList<SisFileContent>& files) {
    return SisBuilder(pkg, files).build();
}
