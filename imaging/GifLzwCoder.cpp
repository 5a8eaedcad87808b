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

void GifLzwCoder::finishBlocks() {
    // What is left goes out as one byte, a zero byte when nothing is left.
    WriteBlockByte(int(bitBuffer & 0xFF));
    bitBuffer = 0;
    bitCount = 0;
    WriteBlockByte(-1);
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

void GifLzwCoder::writeBlockByteSlow(int value) {
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
