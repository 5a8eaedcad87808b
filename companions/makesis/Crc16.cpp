#include "companions/makesis/Crc16.h"

#include <array>

namespace {

constexpr std::array<std::uint16_t, 256> makeTable() {
    std::array<std::uint16_t, 256> table{};
    for (unsigned index = 0; index < 256; ++index) {
        unsigned value = index << 8;
        for (int bit = 0; bit < 8; ++bit)
            value = (value & 0x8000) ? (value << 1) ^ 0x1021 : value << 1;
        table[index] = static_cast<std::uint16_t>(value);
    }
    return table;
}

constexpr std::array<std::uint16_t, 256> kTable = makeTable();

} // namespace

std::uint16_t crc16(QByteArrayView bytes, std::uint16_t crc) {
    for (const char byte : bytes)
        crc = static_cast<std::uint16_t>(
            (crc << 8) ^ kTable[((crc >> 8) ^ static_cast<unsigned char>(byte)) & 0xff]);
    return crc;
}

std::uint32_t uidChecksum(std::uint32_t uid1, std::uint32_t uid2, std::uint32_t uid3) {
    QByteArray even;
    QByteArray odd;
    for (const std::uint32_t uid : {uid1, uid2, uid3}) {
        for (int shift = 0; shift < 32; shift += 8) {
            const char byte = static_cast<char>((uid >> shift) & 0xff);
            (shift % 16 == 0 ? even : odd).append(byte);
        }
    }
    return (std::uint32_t{crc16(odd)} << 16) | crc16(even);
}
