#include "imaging/cPalette.h"

#include "imaging/cDIBSection.h"
#include "imaging/cDIBSectionSave.h"
#include "platform/Failure.h"
#include "platform/StatusSink.h"
#include "platform/modDialogs.h"

#include <QString>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace {

constexpr int kCellShift = 3; // 32 levels a channel in the lookup grid
constexpr int kCellsPerChannel = 256 >> kCellShift;
constexpr int kCellCount = kCellsPerChannel * kCellsPerChannel * kCellsPerChannel;

[[noreturn]] void raiseSubscript() {
    raiseFailure(FailureNumber::SubscriptOutOfRange, QStringLiteral("cPalette"));
}

// min / 2 + max / 2 rounded to the nearest integer, ties to even.
inline int midpoint(int min, int max) {
    const int sum = min + max;
    int half = sum >> 1;
    if ((sum & 1) && (half & 1))
        ++half;
    return half;
}

// A quotient rounded to the nearest integer, ties to even.
inline std::uint8_t roundedAverage(std::int32_t sum, std::int32_t count) {
    if (count == 0)
        raiseFailure(FailureNumber::DivisionByZero, QStringLiteral("cPalette"));
    const double value = std::nearbyint(double(sum) / double(count));
    if (value < 0 || value > 255)
        raiseFailure(FailureNumber::Overflow, QStringLiteral("cPalette"));
    return std::uint8_t(value);
}

inline std::uint8_t clampByte(int value) {
    return std::uint8_t(value < 0 ? 0 : (value > 255 ? 255 : value));
}

} // namespace

cPalette::cPalette() = default;

void cPalette::Add(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    entries.push_back({red, green, blue, 0});
    ++mEntryCount;
    dropGrid();
}

const cPalette::Entry& cPalette::entryAt(int index) const {
    if (index < 1 || index > mEntryCount)
        raiseSubscript();
    return entries[std::size_t(index - 1)];
}

std::uint8_t cPalette::Red(int index) const {
    return entryAt(index).red;
}
std::uint8_t cPalette::Green(int index) const {
    return entryAt(index).green;
}
std::uint8_t cPalette::Blue(int index) const {
    return entryAt(index).blue;
}

void cPalette::Clear() {
    entries.clear();
    mEntryCount = 0;
    dropGrid();
}

void cPalette::EraseNodes() {
    nodes.clear();
    freeHead = 0;
}

int cPalette::ClosestIndexLinear(int red, int green, int blue) const {
    std::int64_t best = std::numeric_limits<std::int32_t>::max();
    int bestIndex = 0;
    for (int i = 0; i < mEntryCount; ++i) {
        const Entry& e = entries[std::size_t(i)];
        const std::int64_t dr = red - e.red, dg = green - e.green, db = blue - e.blue;
        const std::int64_t distance = dr * dr + dg * dg + db * db;
        if (distance < best) {
            best = distance;
            bestIndex = i + 1;
        }
    }
    return bestIndex;
}

void cPalette::dropGrid() {
    mGridValid = false;
}

namespace {

constexpr int kCoarseStep = 2; // a coarse cell is 2 ^ kCoarseStep cells wide
constexpr int kCoarseShift = kCellShift + kCoarseStep;
constexpr int kCoarsePerChannel = 256 >> kCoarseShift;

// Picks among the `count` entries given by their channels the ones that can be nearest to some
// colour of the cube of side `size` at `low`: those whose least distance to the cube is no more
// than the smallest greatest distance of any of them. Hands their positions, in order, to
// `take`. The first loop runs over plain arrays so that the compiler can vectorise it.
template <typename Take>
void selectCandidates(const std::int32_t* red, const std::int32_t* green, const std::int32_t* blue,
                      int count, const int low[3], int size, std::vector<std::int32_t>& scratch,
                      Take take) {
    scratch.resize(std::size_t(count));
    std::int32_t* least = scratch.data();
    const int lo0 = low[0], lo1 = low[1], lo2 = low[2];
    const int hi0 = lo0 + size - 1, hi1 = lo1 + size - 1, hi2 = lo2 + size - 1;
    std::int32_t bound = std::numeric_limits<std::int32_t>::max();
    for (int k = 0; k < count; ++k) {
        const int r = red[k], g = green[k], b = blue[k];
        const int gapR = std::max(lo0 - r, 0) + std::max(r - hi0, 0);
        const int gapG = std::max(lo1 - g, 0) + std::max(g - hi1, 0);
        const int gapB = std::max(lo2 - b, 0) + std::max(b - hi2, 0);
        const int spreadR = std::max(r - lo0, hi0 - r);
        const int spreadG = std::max(g - lo1, hi1 - g);
        const int spreadB = std::max(b - lo2, hi2 - b);
        least[k] = gapR * gapR + gapG * gapG + gapB * gapB;
        bound = std::min(bound, spreadR * spreadR + spreadG * spreadG + spreadB * spreadB);
    }
    for (int k = 0; k < count; ++k)
        if (least[k] <= bound)
            take(k);
}

} // namespace

void cPalette::prepareGrid() const {
    mCellStart.assign(kCellCount, -1);
    mPool.clear();
    const std::size_t coarseCells =
        std::size_t(kCoarsePerChannel * kCoarsePerChannel * kCoarsePerChannel);
    mCoarseStart.assign(coarseCells, -1);
    mCoarseCount.assign(coarseCells, 0);
    mCoarseRed.clear();
    mCoarseGreen.clear();
    mCoarseBlue.clear();
    mCoarseIndex.clear();
    mAllRed.resize(std::size_t(mEntryCount));
    mAllGreen.resize(std::size_t(mEntryCount));
    mAllBlue.resize(std::size_t(mEntryCount));
    for (int i = 0; i < mEntryCount; ++i) {
        mAllRed[std::size_t(i)] = entries[std::size_t(i)].red;
        mAllGreen[std::size_t(i)] = entries[std::size_t(i)].green;
        mAllBlue[std::size_t(i)] = entries[std::size_t(i)].blue;
    }
    mGridValid = true;
}

std::int32_t cPalette::coarseCandidatesOf(int cell) const {
    std::int32_t& start = mCoarseStart[std::size_t(cell)];
    if (start >= 0)
        return start;
    const int low[3] = {(cell % kCoarsePerChannel) << kCoarseShift,
                        ((cell / kCoarsePerChannel) % kCoarsePerChannel) << kCoarseShift,
                        (cell / (kCoarsePerChannel * kCoarsePerChannel)) << kCoarseShift};
    start = std::int32_t(mCoarseIndex.size());
    selectCandidates(mAllRed.data(), mAllGreen.data(), mAllBlue.data(), mEntryCount, low,
                     1 << kCoarseShift, mScratch, [this](int k) {
                         mCoarseRed.push_back(mAllRed[std::size_t(k)]);
                         mCoarseGreen.push_back(mAllGreen[std::size_t(k)]);
                         mCoarseBlue.push_back(mAllBlue[std::size_t(k)]);
                         mCoarseIndex.push_back(std::uint16_t(k));
                     });
    mCoarseCount[std::size_t(cell)] = std::int32_t(mCoarseIndex.size()) - start;
    return start;
}

std::int32_t cPalette::candidatesOf(int cell) const {
    if (!mGridValid)
        prepareGrid();
    std::int32_t& start = mCellStart[std::size_t(cell)];
    if (start >= 0)
        return start;
    const int r = cell % kCellsPerChannel, g = (cell / kCellsPerChannel) % kCellsPerChannel,
              b = cell / (kCellsPerChannel * kCellsPerChannel);
    const int low[3] = {r << kCellShift, g << kCellShift, b << kCellShift};
    // Only entries that can be nearest somewhere in the wider cell around can be nearest here.
    const int coarse = (r >> kCoarseStep) + (g >> kCoarseStep) * kCoarsePerChannel +
                       (b >> kCoarseStep) * kCoarsePerChannel * kCoarsePerChannel;
    const std::int32_t from = coarseCandidatesOf(coarse);
    const int count = mCoarseCount[std::size_t(coarse)];
    start = std::int32_t(mPool.size());
    mPool.push_back(0);
    const std::uint16_t* index = mCoarseIndex.data() + from;
    selectCandidates(mCoarseRed.data() + from, mCoarseGreen.data() + from,
                     mCoarseBlue.data() + from, count, low, 1 << kCellShift, mScratch,
                     [this, index](int k) { mPool.push_back(index[k]); });
    mPool[std::size_t(start)] = std::uint16_t(mPool.size() - std::size_t(start) - 1);
    return start;
}

int cPalette::nearestOfBytes(int red, int green, int blue) const {
    const int cell = (red >> kCellShift) + ((green >> kCellShift) * kCellsPerChannel) +
                     ((blue >> kCellShift) * kCellsPerChannel * kCellsPerChannel);
    if (!mGridValid)
        prepareGrid();
    std::int32_t start = mCellStart[std::size_t(cell)];
    if (start < 0)
        start = candidatesOf(cell);
    const std::uint16_t* candidate = mPool.data() + start;
    const int n = *candidate++;
    const Entry* table = entries.data();
    std::int32_t best = std::numeric_limits<std::int32_t>::max();
    int bestIndex = 0;
    for (int k = 0; k < n; ++k) { // ascending, so ties keep the lowest index
        const int i = candidate[k];
        const Entry& e = table[i];
        const std::int32_t dr = red - e.red, dg = green - e.green, db = blue - e.blue;
        const std::int32_t distance = dr * dr + dg * dg + db * db;
        const bool nearer = distance < best;
        best = nearer ? distance : best;
        bestIndex = nearer ? i + 1 : bestIndex;
    }
    return bestIndex;
}

int cPalette::ClosestIndex(int red, int green, int blue) const {
    if (mEntryCount == 0)
        return 0;
    if (red < 0 || red > 255 || green < 0 || green > 255 || blue < 0 || blue > 255 ||
        mEntryCount > 65535)
        return ClosestIndexLinear(red, green, blue);
    return nearestOfBytes(red, green, blue);
}

std::int32_t cPalette::NewNode() {
    ++nodesInUse;
    if (freeHead == 0) {
        const std::int32_t index = nodesInUse;
        const std::int32_t upper = std::int32_t(nodes.size()) - 1;
        if (index > upper) {
            const auto grown = std::int32_t(std::nearbyint(double(nodesInUse) * 1.1));
            nodes.resize(std::size_t(std::max(grown, index)) + 1);
        }
        return index;
    }
    const std::int32_t index = freeHead;
    PaletteNode& node = nodes[std::size_t(index)];
    freeHead = node.next;
    node.children.fill(0);
    return index;
}

void cPalette::FreeNode(std::int32_t index) {
    PaletteNode& node = nodes[std::size_t(index)];
    node.next = freeHead;
    freeHead = index;
    node.isLeaf = false;
    node.inReducibleList = false;
    --nodesInUse;
}

namespace {

// The half each value of a channel falls in at the levels 1 to 16, bit 0 for level 1: the
// split of a channel depends only on the halves taken before in that same channel.
const std::array<std::uint16_t, 256>& channelPaths() {
    static const std::array<std::uint16_t, 256> paths = [] {
        std::array<std::uint16_t, 256> out{};
        for (int value = 0; value < 256; ++value) {
            int min = 0, max = 255;
            for (int level = 0; level < 16; ++level) {
                const int mid = midpoint(min, max);
                if (value <= mid) {
                    max = mid;
                } else {
                    min = mid;
                    out[std::size_t(value)] |= std::uint16_t(1u << level);
                }
            }
        }
        return out;
    }();
    return paths;
}

// The child slot of a colour at each level, 3 bits a level from bit 0 for level 1: red in the
// low bit of each group, then green, then blue. The slots of a colour are the bits of its three
// channels' tables ORed together.
struct SlotTables {
    std::array<std::uint64_t, 256> red{}, green{}, blue{};
};

const SlotTables& slotTables() {
    static const SlotTables tables = [] {
        SlotTables out;
        const auto& paths = channelPaths();
        for (int value = 0; value < 256; ++value) {
            std::uint64_t spread = 0;
            for (int level = 0; level < 16; ++level)
                if (paths[std::size_t(value)] & (1u << level))
                    spread |= std::uint64_t(1) << (3 * level);
            out.red[std::size_t(value)] = spread;
            out.green[std::size_t(value)] = spread << 1;
            out.blue[std::size_t(value)] = spread << 2;
        }
        return out;
    }();
    return tables;
}

} // namespace

void cPalette::AddColourToTree(std::uint8_t red, std::uint8_t green, std::uint8_t blue) {
    const SlotTables& tables = slotTables();
    const std::uint64_t steps = tables.red[red] | tables.green[green] | tables.blue[blue];
    std::int32_t node = 1;
    for (int level = 1;; ++level) {
        if (level > 16)
            raiseSubscript();
        const int slot = int((steps >> (3 * (level - 1))) & 7u);

        std::int32_t child = nodes[std::size_t(node)].children[std::size_t(slot)];
        if (child == 0) {
            child = NewNode(); // may move the table
            nodes[std::size_t(node)].children[std::size_t(slot)] = child;
            ++nodes[std::size_t(node)].pixelCount;
            PaletteNode& fresh = nodes[std::size_t(child)];
            fresh.isLeaf = level == treeDepth;
            fresh.redSum = fresh.greenSum = fresh.blueSum = 0;
            fresh.pixelCount = 0;
            fresh.next = 0;
        }
        PaletteNode& c = nodes[std::size_t(child)];
        if (c.isLeaf) {
            if (c.pixelCount == 0)
                ++leafCount;
            ++c.pixelCount;
            c.redSum += red;
            c.greenSum += green;
            c.blueSum += blue;
            return;
        }
        if (!c.inReducibleList) {
            if (level > 8)
                raiseSubscript();
            c.next = reducibleHeads[std::size_t(level)];
            reducibleHeads[std::size_t(level)] = child;
            c.inReducibleList = true;
        }
        node = child;
    }
}

bool cPalette::ReduceTree() {
    if (treeDepth > 8)
        raiseSubscript(); // the lists run from level 1 to 8
    int level = treeDepth;
    while (level >= 1 && reducibleHeads[std::size_t(level)] == 0)
        --level;
    if (level < 1)
        return false;
    const std::int32_t index = reducibleHeads[std::size_t(level)];
    reducibleHeads[std::size_t(level)] = nodes[std::size_t(index)].next;
    std::int32_t redTotal = 0, greenTotal = 0, blueTotal = 0, pixelTotal = 0;
    for (std::int32_t& child : nodes[std::size_t(index)].children) {
        if (child == 0)
            continue;
        const PaletteNode& c = nodes[std::size_t(child)];
        redTotal += c.redSum;
        greenTotal += c.greenSum;
        blueTotal += c.blueSum;
        pixelTotal += c.pixelCount;
        FreeNode(child);
        --leafCount;
        child = 0;
    }
    ++leafCount;
    PaletteNode& node = nodes[std::size_t(index)];
    node.redSum = redTotal;
    node.greenSum = greenTotal;
    node.blueSum = blueTotal;
    node.pixelCount = pixelTotal;
    node.isLeaf = true;
    return true;
}

// The tree cannot be folded to the colour limit: the save's sink is asked whether to go on
// with more colours than asked for. "No" ends the whole save.
void cPalette::askToGoOn(const cDIBSectionSave* status) {
    const QString text = QStringLiteral("Error in reducing nodes");
    StatusSink& sink = status ? status->reporter() : quietSink();
    if (sink.ask(text, Vb::YesNo, {}) == Vb::No)
        throw Failure(kErrReducingNodes, QStringLiteral("cPalette.CreateOptimal"), text);
}

void cPalette::CreateOptimal(cDIBSection& source, cDIBSectionSave* status, int maxColours,
                             int depth) {
    const int width = source.Width();
    const int height = source.Height();
    const int scan = source.BytesPerScanLine();
    const std::uint8_t* bits = source.DIBSectionBitsPtr();
    if (depth < 0 || depth > 255)
        raiseFailure(FailureNumber::Overflow, QStringLiteral("cPalette"));
    treeDepth = std::uint8_t(depth);
    if (status)
        status->setLineTotal(height);

    nodes.assign(51, PaletteNode{});
    nodesInUse = 1;
    freeHead = 0;
    leafCount = 0;

    if (bits) {
        for (int y = 0; y < height; ++y) {
            const std::uint8_t* pixel = bits + std::size_t(y) * std::size_t(scan);
            for (int x = 0; x < width; ++x, pixel += 3) {
                AddColourToTree(pixel[2], pixel[1], pixel[0]);
                bool reduced = true;
                while (leafCount > maxColours && reduced)
                    reduced = ReduceTree();
                if (!reduced)
                    askToGoOn(status);
            }
            if (status)
                status->UpdateStatus(y, width, height, QStringLiteral("Create Palette"), 1);
        }
    }

    Clear();
    for (std::size_t i = 1; i < nodes.size(); ++i) {
        const PaletteNode& node = nodes[i];
        if (node.isLeaf)
            Add(roundedAverage(node.redSum, node.pixelCount),
                roundedAverage(node.greenSum, node.pixelCount),
                roundedAverage(node.blueSum, node.pixelCount));
    }
}

void cPalette::ApplyPalette(cDIBSection& source, cDIBSection& destination, cDIBSectionSave* status,
                            bool dither, std::vector<std::uint16_t>* indices) {
    const int width = destination.Width();
    const int height = destination.Height();
    scanWidth = source.BytesPerScanLine();
    std::uint8_t* in = source.DIBSectionBitsPtr();
    std::uint8_t* out = destination.DIBSectionBitsPtr();
    const int lastByte = (width - 1) * 3;
    if (status)
        status->setLineTotal(height);
    if (!in || !out)
        return;
    if (source.Width() != width || source.Height() != height)
        raiseFailure(FailureNumber::SubscriptOutOfRange, QStringLiteral("cPalette"));

    if (indices)
        indices->assign(std::size_t(width) * std::size_t(height), 0);
    // Mapping a buffer onto itself leaves no error to carry: each pixel already holds its
    // palette colour when the error is measured.
    if (in == out)
        dither = false;
    const bool fast = mEntryCount >= 1 && mEntryCount <= 65535;
    const Entry* table = entries.data();
    for (int y = 0; y < height; ++y) {
        std::uint8_t* row = in + std::size_t(y) * std::size_t(scanWidth);
        std::uint8_t* mapped = out + std::size_t(y) * std::size_t(scanWidth);
        std::uint8_t* nextRow = y < height - 1 ? row + scanWidth : nullptr;
        std::uint16_t* indexRow =
            indices ? indices->data() + std::size_t(y) * std::size_t(width) : nullptr;
        // The pixel being mapped is held in registers, and so is its right neighbour once the
        // diffusion has reached it, so that no pixel waits for its own bytes to be read back.
        int blue = row[0], green = row[1], red = row[2];
        for (int x = 0; x <= lastByte; x += 3) {
            int nextBlue = 0, nextGreen = 0, nextRed = 0;
            if (x < lastByte) {
                nextBlue = row[x + 3];
                nextGreen = row[x + 4];
                nextRed = row[x + 5];
            }
            const int index =
                fast ? nearestOfBytes(red, green, blue) : ClosestIndex(red, green, blue);
            const Entry& e = fast ? table[index - 1] : entryAt(index);
            if (indexRow)
                indexRow[x / 3] = std::uint16_t(index - 1);
            mapped[x] = e.blue;
            mapped[x + 1] = e.green;
            mapped[x + 2] = e.red;
            const int errRed = red - e.red;
            const int errGreen = green - e.green;
            const int errBlue = blue - e.blue;
            blue = nextBlue;
            green = nextGreen;
            red = nextRed;
            if (!dither || std::abs(errRed) + std::abs(errGreen) + std::abs(errBlue) <= 3)
                continue;
            // The red error lands on the neighbour's blue byte and the blue error on its red
            // byte, on the right and in the next row alike.
            if (x < lastByte - 3) {
                blue = clampByte(blue + errRed * 7 / 16);
                green = clampByte(green + errGreen * 7 / 16);
                red = clampByte(red + errBlue * 7 / 16);
                row[x + 3] = std::uint8_t(blue);
                row[x + 4] = std::uint8_t(green);
                row[x + 5] = std::uint8_t(red);
            }
            // Only the pixel below takes a share: the diagonal neighbours' weight is 0.
            if (nextRow && x > 0 && x < lastByte) {
                std::uint8_t* target = nextRow + x;
                target[0] = clampByte(target[0] + errRed * 4 / 16);
                target[1] = clampByte(target[1] + errGreen * 4 / 16);
                target[2] = clampByte(target[2] + errBlue * 4 / 16);
            }
        }
        if (status)
            status->UpdateStatus(y, width, height, QStringLiteral("Apply Palette"), 2);
    }
}
