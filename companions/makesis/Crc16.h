// The 16-bit CRC of SIS files: polynomial x^16 + x^12 + x^5 + 1, initial value 0, no reflection
// (the XMODEM form of CRC-CCITT).
#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <cstdint>

// The CRC of `bytes`, continuing from `crc` (0 to start).
std::uint16_t crc16(QByteArrayView bytes, std::uint16_t crc = 0);

// The check value that follows three UIDs: the CRC of the bytes at odd offsets of their
// little-endian form in the high half, the CRC of the bytes at even offsets in the low half.
std::uint32_t uidChecksum(std::uint32_t uid1, std::uint32_t uid2, std::uint32_t uid3);
