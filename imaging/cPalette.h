#pragma once

#include <array>
#include <cstdint>
#include <vector>

class cDIBSection;
class cDIBSectionSave;

// Reduces a 24-bit picture to at most a given number of colours with a tree of sub-cubes of the
// RGB cube, and maps pictures onto the palette, optionally with error diffusion. The children
// of a node split its box at the rounded midpoint of each channel, and both halves keep the
// midpoint as a bound. One instance serves one CreateOptimal.
class cPalette {
public:
    cPalette();

    // Appends a palette entry.
    void Add(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    // The 1-based index of the nearest entry (squared RGB distance); the lowest index wins a
    // tie, 0 when the palette is empty.
    int ClosestIndex(int red, int green, int blue) const;
    // The same answer by a plain scan over every entry.
    int ClosestIndexLinear(int red, int green, int blue) const;
    int Count() const { return mEntryCount; }
    // The channels of entry `index` (1 to Count); another index raises a subscript failure.
    std::uint8_t Red(int index) const;
    std::uint8_t Green(int index) const;
    std::uint8_t Blue(int index) const;

    // Builds the palette of `source` with at most `maxColours` entries and a tree of `depth`
    // levels (1 to 8). `status` (may be null) hears of each row. When the tree cannot be
    // folded down to `maxColours`, the save's sink is asked "Error in reducing nodes"; "No"
    // raises kErrReducingNodes, "Yes" goes on with more colours.
    void CreateOptimal(cDIBSection& source, cDIBSectionSave* status, int maxColours, int depth);
    void EraseNodes();
    void Clear();
    // Maps `source` onto the palette into `destination` (same size). With `dither` the error of
    // each pixel is carried into `source`, which then holds the diffused picture.
    // `indices`, when given, receives the 0-based palette index of every pixel, row by row of
    // the buffer, `Width()` a row.
    void ApplyPalette(cDIBSection& source, cDIBSection& destination, cDIBSectionSave* status,
                      bool dither, std::vector<std::uint16_t>* indices = nullptr);

    static constexpr std::int32_t kErrReducingNodes = std::int32_t(0x80040214U);

private:
    struct PaletteNode {
        bool isLeaf = false;
        bool inReducibleList = false;
        std::int32_t redSum = 0;
        std::int32_t greenSum = 0;
        std::int32_t blueSum = 0;
        std::int32_t pixelCount = 0;
        std::array<std::int32_t, 8> children{};
        std::int32_t next = 0;
    };
    struct Entry {
        std::uint8_t red, green, blue, unused;
    };

    static void askToGoOn(const cDIBSectionSave* status);
    void AddColourToTree(std::uint8_t red, std::uint8_t green, std::uint8_t blue);
    bool ReduceTree();
    void FreeNode(std::int32_t index);
    std::int32_t NewNode();
    const Entry& entryAt(int index) const;
    // Where the candidate list of grid cell `cell` starts in mPool: its length, then the
    // 0-based entries that can be nearest to some colour of the cell, in ascending order.
    std::int32_t candidatesOf(int cell) const;
    std::int32_t coarseCandidatesOf(int cell) const;
    void dropGrid();
    // ClosestIndex for channels of 0 to 255 and 1 to 65535 entries.
    int nearestOfBytes(int red, int green, int blue) const;
    void prepareGrid() const;

    std::vector<PaletteNode> nodes; // slot 0 unused: index 0 means no node
    std::int32_t nodesInUse = 0;
    std::uint8_t treeDepth = 0;
    std::int32_t freeHead = 0;
    std::int32_t leafCount = 0;
    std::array<std::int32_t, 9> reducibleHeads{}; // subscripts 1 to 8
    std::vector<Entry> entries;                   // 0-based here; index i is entry i + 1
    std::int32_t mEntryCount = 0;
    std::int32_t scanWidth = 0;

    // A lookup grid for ClosestIndex, built cell by cell on demand and dropped when the
    // palette changes. It gives the same answers as the plain scan.
    mutable std::vector<std::int32_t> mCellStart; // -1 for a cell not built yet
    mutable std::vector<std::uint16_t> mPool;
    // The same over cells 4 times as wide, the entries' channels held apart.
    mutable std::vector<std::int32_t> mCoarseStart;
    mutable std::vector<std::int32_t> mCoarseCount;
    mutable std::vector<std::int32_t> mCoarseRed, mCoarseGreen, mCoarseBlue;
    mutable std::vector<std::uint16_t> mCoarseIndex;
    mutable std::vector<std::int32_t> mAllRed, mAllGreen, mAllBlue;
    mutable std::vector<std::int32_t> mScratch;
    mutable bool mGridValid = false;
};
