#include "imaging/GifLzwCoder.h"

namespace {
inline std::uint32_t slotOf(std::uint32_t key) {
    return (key * 2654435761u) >> 22;
} // 10 bits
} // namespace

void GifLzwCoder::Initialise(int bitsPerPixel) {
    mMinCodeSize = bitsPerPixel == 1 ? 2 : bitsPerPixel;
    mClearCode = 1 << mMinCodeSize;
    mEndCode = mClearCode + 1;
    mFirstFreeCode = mClearCode + 2;
    bitBuffer = 0;
    bitCount = 0;
    blockCount = 0;
    pendingCode = 0;
    ResetTable();
}

void GifLzwCoder::ResetTable() {
    mCodeSize = mMinCodeSize + 1;
    mCodeLimit = 1 << mCodeSize;
    mNextCode = mFirstFreeCode;
    mKeys.fill(0);
}

int GifLzwCoder::FindString(int prefix, int pixel) const {
    const std::uint32_t key = (std::uint32_t(prefix) << 8 | std::uint32_t(pixel)) + 1;
    for (std::uint32_t slot = slotOf(key);; slot = (slot + 1) & (kSlots - 1)) {
        if (mKeys[slot] == key)
            return mCodes[slot];
        if (mKeys[slot] == 0)
            return -1;
    }
}

void GifLzwCoder::AddString(int prefix, int pixel) {
    const std::uint32_t key = (std::uint32_t(prefix) << 8 | std::uint32_t(pixel)) + 1;
    std::uint32_t slot = slotOf(key);
    while (mKeys[slot] != 0)
        slot = (slot + 1) & (kSlots - 1);
    mKeys[slot] = key;
    mCodes[slot] = std::uint16_t(mNextCode);
    ++mNextCode;
    if (mNextCode > mCodeLimit + 1) {
        ++mCodeSize;
        mCodeLimit = 1 << mCodeSize;
    }
}

int GifLzwCoder::CompressPixel(int value, int count) {
    if (count == 1) {
        pendingCode = value;
        return -1;
    }
    const int found = FindString(pendingCode, value);
    if (found >= 0) {
        pendingCode = found;
        return -1;
    }
    const int code = pendingCode;
    AddString(pendingCode, value);
    pendingCode = value;
    return code;
}

void GifLzwCoder::WriteCode(int code) {
    bitBuffer |= (std::uint32_t(code) & ((1u << mCodeSize) - 1)) << bitCount;
    bitCount += mCodeSize;
    while (bitCount >= 8) {
        WriteBlockByte(int(bitBuffer & 0xFF));
        bitBuffer >>= 8;
        bitCount -= 8;
    }
    if (code == mEndCode) {
        // What is left goes out as one byte, a zero byte when nothing is left.
        WriteBlockByte(int(bitBuffer & 0xFF));
        bitBuffer = 0;
        bitCount = 0;
        WriteBlockByte(-1);
    }
}

void GifLzwCoder::FinishStream() {
    auto widen = [this] {
        ++mCodeSize;
        mCodeLimit = 1 << mCodeSize;
    };
    if (mNextCode == mCodeLimit + 1 && mCodeSize < 12)
        widen();
    WriteCode(pendingCode);
    if (mNextCode == mCodeLimit && mCodeSize < 12)
        widen();
    WriteCode(mEndCode);
}

void GifLzwCoder::WriteBlockByte(int value) {
    auto flush = [this] {
        mOut.push_back(std::uint8_t(blockCount));
        mOut.insert(mOut.end(), block.begin(), block.begin() + blockCount);
        blockCount = 0;
    };
    if (value >= 0) {
        block[std::size_t(blockCount++)] = std::uint8_t(value);
        if (blockCount == 255)
            flush();
        return;
    }
    if (blockCount > 0)
        flush();
    flush(); // the zero-length block that ends the chain
}
