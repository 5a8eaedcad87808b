#include "companions/SisReader.h"

#include <QtEndian>
#include <stdexcept>
#include <zlib.h>

std::uint16_t sisCrc(const QByteArray& bytes) {
    unsigned crc = 0;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte) << 8;
        for (int bit = 0; bit < 8; ++bit)
            crc = ((crc & 0x8000) ? (crc << 1) ^ 0x1021 : crc << 1) & 0xffff;
    }
    return static_cast<std::uint16_t>(crc);
}

std::uint32_t sisUidCheck(std::uint32_t uid1, std::uint32_t uid2, std::uint32_t uid3) {
    QByteArray uids(12, '\0'), even, odd;
    qToLittleEndian<std::uint32_t>(uid1, uids.data());
    qToLittleEndian<std::uint32_t>(uid2, uids.data() + 4);
    qToLittleEndian<std::uint32_t>(uid3, uids.data() + 8);
    for (int i = 0; i < 12; ++i)
        (i % 2 ? odd : even).append(uids[i]);
    return std::uint32_t{sisCrc(odd)} << 16 | sisCrc(even);
}

namespace {

class Bytes {
public:
    explicit Bytes(const QByteArray& bytes) : mBytes(bytes) {}
    QByteArray at(std::uint32_t offset, std::uint32_t length) const {
        if (std::uint64_t{offset} + length > static_cast<std::uint64_t>(mBytes.size()))
            throw std::runtime_error("a pointer leads outside the file");
        return mBytes.mid(offset, length);
    }
    std::uint16_t u16(std::uint32_t offset) const {
        return qFromLittleEndian<std::uint16_t>(at(offset, 2).constData());
    }
    std::uint32_t u32(std::uint32_t offset) const {
        return qFromLittleEndian<std::uint32_t>(at(offset, 4).constData());
    }
    QString text(std::uint32_t lengthAt, std::uint32_t pointerAt, bool unicode) const {
        const QByteArray raw = at(u32(pointerAt), u32(lengthAt));
        return unicode ? QString::fromUtf16(reinterpret_cast<const char16_t*>(raw.constData()),
                                            raw.size() / 2)
                       : QString::fromLatin1(raw);
    }
    // n lengths, then n pointers.
    QStringList texts(std::uint32_t offset, int n, bool unicode) const {
        QStringList list;
        for (int i = 0; i < n; ++i)
            list << text(offset + 4 * i, offset + 4 * (n + i), unicode);
        return list;
    }

private:
    const QByteArray& mBytes;
};

} // namespace

SisRead readSis(const QByteArray& bytes) {
    const Bytes in(bytes);
    SisRead sis;
    for (int i = 0; i < 4; ++i)
        sis.uid[i] = in.u32(4 * i);
    sis.uid4Expected = sisUidCheck(sis.uid[0], sis.uid[1], sis.uid[2]);
    sis.checksum = in.u16(16);
    sis.checksumExpected = sisCrc(bytes.left(16) + bytes.mid(18));
    const int languages = in.u16(18), files = in.u16(20), requisites = in.u16(22);
    sis.drive = in.u16(28);
    sis.installerVersion = in.u32(32);
    sis.options = in.u16(36);
    sis.type = in.u16(38);
    sis.major = in.u16(40);
    sis.minor = in.u16(42);
    sis.variant = in.u32(44);
    const bool unicode = sis.options & 0x1, compressed = !(sis.options & 0x8);
    for (int i = 0; i < languages; ++i)
        sis.languages << in.u16(in.u32(48) + 2 * i);
    sis.names = in.texts(in.u32(64), languages, unicode);
    for (std::uint32_t i = 0, at = in.u32(56); i < std::uint32_t(requisites); ++i) {
        sis.requisites << SisRead::Requisite{in.u32(at), in.u16(at + 4), in.u16(at + 6),
                                             in.u32(at + 8), in.texts(at + 12, languages, unicode)};
        at += 12 + 8 * languages;
    }
    for (std::uint32_t i = 0, at = in.u32(52); i < std::uint32_t(files); ++i) {
        if (in.u32(at) != 0 || in.u32(at + 4) != 0)
            throw std::runtime_error("only simple standard files are read");
        SisRead::File file{in.text(at + 12, at + 16, unicode), in.text(at + 20, at + 24, unicode),
                           in.at(in.u32(at + 32), in.u32(at + 28))};
        if (compressed) {
            uLongf length = in.u32(at + 36);
            QByteArray plain(qsizetype(length), '\0');
            if (uncompress(reinterpret_cast<Bytef*>(plain.data()), &length,
                           reinterpret_cast<const Bytef*>(file.content.constData()),
                           uLong(file.content.size())) != Z_OK ||
                length != in.u32(at + 36))
                throw std::runtime_error("a file's contents do not uncompress");
            file.content = plain;
        }
        sis.files.prepend(file); // stored in the reverse of the order of installation
        at += 48;
    }
    return sis;
}
