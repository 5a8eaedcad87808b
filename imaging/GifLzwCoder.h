#pragma once

#include <array>
#include <cstdint>
#include <vector>

// The LZW coder of the GIF writer. Its code table never passes 511 entries, so no code is wider
// than 9 bits; the caller resets it when the next code reaches 511. Codes are packed least
// significant bit first into sub-blocks of at most 255 bytes, appended to `out`.
class GifLzwCoder {
public:
    explicit GifLzwCoder(std::vector<std::uint8_t>& out) : mOut(out) {}

    // Prepares the coder for pixels of `bitsPerPixel` bits.
    void Initialise(int bitsPerPixel);
    // Takes one pixel; `count` is 1 for the first pixel after a start or a reset. Returns the
    // code to write, or -1 for none.
    int CompressPixel(int value, int count) {
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
    // Codes one pixel of the stream: compresses it, writes a finished code, and resets the
    // table (after writing the pending code and a clear code) when the next code reaches the
    // limit. `count` runs from 1 after each start or reset.
    void EncodePixel(int value, int& count) {
        const int code = CompressPixel(value, count);
        if (code >= 0)
            WriteCode(code);
        ++count;
        if (nextCode() >= kTableLimit) {
            WriteCode(Flush());
            WriteCode(clearCode());
            ResetTable();
            count = 1;
        }
    }
    // The code of the pixels matched so far.
    int Flush() const { return pendingCode; }
    void WriteCode(int code) {
        bitBuffer |= (std::uint32_t(code) & ((1u << mCodeSize) - 1)) << bitCount;
        bitCount += mCodeSize;
        while (bitCount >= 8) {
            WriteBlockByte(int(bitBuffer & 0xFF));
            bitBuffer >>= 8;
            bitCount -= 8;
        }
        if (code == mEndCode)
            finishBlocks();
    }
    // Writes the code of the pending pixels and the end code, each as wide as a decoder reads
    // it: a decoder widens its codes one code later than the coder, which matters only when the
    // stream stops just there.
    void FinishStream();
    void WriteBlockByte(int value) {
        if (value >= 0 && blockCount < 254) {
            block[std::size_t(blockCount++)] = std::uint8_t(value);
            return;
        }
        writeBlockByteSlow(value);
    }
    void ResetTable();

    int minCodeSize() const { return mMinCodeSize; }
    int clearCode() const { return mClearCode; }
    int endCode() const { return mEndCode; }
    int nextCode() const { return mNextCode; }
    int codeSize() const { return mCodeSize; }

    // Codes per table: the table holds codes up to 511.
    static constexpr int kTableLimit = 511;

private:
    void AddString(int prefix, int pixel);
    int FindString(int prefix, int pixel) const {
        const std::uint32_t key = (std::uint32_t(prefix) << 8 | std::uint32_t(pixel)) + 1;
        for (std::uint32_t slot = (key * 2654435761u) >> 22;; slot = (slot + 1) & (kSlots - 1)) {
            if (mKeys[slot] == key)
                return mCodes[slot];
            if (mKeys[slot] == 0)
                return -1;
        }
    }
    void writeBlockByteSlow(int value);
    void finishBlocks();

    std::vector<std::uint8_t>& mOut;
    int mMinCodeSize = 0;
    int mCodeSize = 0;
    int mCodeLimit = 0;
    int mClearCode = 0;
    int mEndCode = 0;
    int mFirstFreeCode = 0;
    int mNextCode = 0;
    int pendingCode = 0; // the code of the pending string: a pixel value or a table entry

    std::uint32_t bitBuffer = 0;
    int bitCount = 0;
    std::array<std::uint8_t, 256> block{};
    int blockCount = 0;

    // The code table as an open-addressing hash of (prefix code, pixel) to code. Each entry
    // stands for the whole string of its prefix plus the pixel, which is what the stream needs.
    static constexpr int kSlots = 1024;
    std::array<std::uint32_t, kSlots> mKeys{}; // key + 1, 0 for an empty slot
    std::array<std::uint16_t, kSlots> mCodes{};
};
