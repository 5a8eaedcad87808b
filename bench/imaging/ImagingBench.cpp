// The cost of publishing a slide picture: the whole GIF save (quantise, diffuse, encode,
// write) and the JPEG save, plus the nearest-colour search and the LZW coder against their
// plain linear forms.
#include "imaging/GifLzwCoder.h"
#include "imaging/cDIBSection.h"
#include "imaging/cPalette.h"
#include "imaging/modPictureSave.h"

#include <QDir>
#include <QImage>
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdlib>
#include <random>

namespace {

QImage photoLike(int width, int height) {
    std::mt19937 random(1);
    std::uniform_int_distribution<int> grain(-6, 6);
    QImage picture(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            int r = int(128 + 100 * std::sin(x / 37.0) + 20 * std::cos(y / 11.0));
            int g = int(128 + 90 * std::cos((x + y) / 53.0));
            int b = int(128 + 100 * std::sin(y / 29.0) * std::cos(x / 71.0));
            if ((x / 40 + y / 30) % 5 == 3) {
                r = 230;
                g = 40;
                b = 60;
            }
            const int n = grain(random);
            picture.setPixel(x, y,
                             qRgb(std::clamp(r + n, 0, 255), std::clamp(g + n, 0, 255),
                                  std::clamp(b + n, 0, 255)));
        }
    return picture;
}

QString scratch(const char* name) {
    return QDir::temp().filePath(QStringLiteral("tessaly-bench-%1-%2")
                                     .arg(QString::number(::getpid()), QString::fromLatin1(name)));
}

void BM_GifSave(benchmark::State& state) {
    const QImage picture = photoLike(int(state.range(0)), int(state.range(1)));
    const QString path = scratch("slide.gif");
    for (auto _ : state)
        if (!SavePictureBoxImage(path, picture, 2))
            state.SkipWithError("save failed");
    QFile::remove(path);
    state.SetItemsProcessed(state.iterations() * state.range(0) * state.range(1));
}
BENCHMARK(BM_GifSave)->Args({160, 120})->Args({640, 480})->Unit(benchmark::kMillisecond);

void BM_JpegSave(benchmark::State& state) {
    const QImage picture = photoLike(int(state.range(0)), int(state.range(1)));
    const QString path = scratch("slide.jpg");
    for (auto _ : state)
        if (!SavePictureBoxImage(path, picture, 1))
            state.SkipWithError("save failed");
    QFile::remove(path);
    QFile::remove(scratch("slide.bmp"));
}
BENCHMARK(BM_JpegSave)->Args({160, 120})->Args({640, 480})->Unit(benchmark::kMillisecond);

// The stages of the GIF save on their own.
void BM_CreateOptimal(benchmark::State& state) {
    const QImage picture = photoLike(int(state.range(0)), int(state.range(1)));
    for (auto _ : state) {
        cDIBSection source;
        source.fromQImage(picture);
        cPalette palette;
        palette.CreateOptimal(source, nullptr, 256, 8);
        benchmark::DoNotOptimize(palette.Count());
    }
}
BENCHMARK(BM_CreateOptimal)->Args({160, 120})->Args({640, 480})->Unit(benchmark::kMillisecond);

// Mapping with diffusion onto a fresh palette, whose lookup grid is built on the way.
void BM_ApplyPalette(benchmark::State& state) {
    const QImage picture = photoLike(int(state.range(0)), int(state.range(1)));
    cDIBSection original;
    original.fromQImage(picture);
    cPalette built;
    built.CreateOptimal(original, nullptr, 256, 8);
    std::vector<std::uint16_t> indices;
    for (auto _ : state) {
        state.PauseTiming();
        cDIBSection source, mapped;
        source.fromQImage(picture);
        mapped.Create(source.Width(), source.Height());
        cPalette palette;
        for (int i = 1; i <= built.Count(); ++i)
            palette.Add(built.Red(i), built.Green(i), built.Blue(i));
        state.ResumeTiming();
        palette.ApplyPalette(source, mapped, nullptr, true, &indices);
        benchmark::DoNotOptimize(indices.data());
    }
}
BENCHMARK(BM_ApplyPalette)->Args({160, 120})->Args({640, 480})->Unit(benchmark::kMillisecond);

struct Quantised {
    cPalette palette;
    std::vector<std::uint16_t> indices;
    std::vector<std::array<int, 3>> queries;
};

Quantised& quantised() {
    static Quantised q = [] {
        Quantised out;
        const QImage picture = photoLike(640, 480);
        cDIBSection source, mapped;
        source.fromQImage(picture);
        mapped.Create(640, 480);
        out.palette.CreateOptimal(source, nullptr, 256, 8);
        out.palette.ApplyPalette(source, mapped, nullptr, true, &out.indices);
        // The colours ApplyPalette looks up: the diffused pixels.
        const std::uint8_t* bits = source.DIBSectionBitsPtr();
        for (int y = 0; y < 480; ++y)
            for (int x = 0; x < 640; ++x) {
                const std::uint8_t* p = bits + y * source.BytesPerScanLine() + x * 3;
                out.queries.push_back({p[2], p[1], p[0]});
            }
        return out;
    }();
    return q;
}

void BM_ClosestIndexGrid(benchmark::State& state) {
    Quantised& q = quantised();
    for (auto _ : state)
        for (const auto& c : q.queries)
            benchmark::DoNotOptimize(q.palette.ClosestIndex(c[0], c[1], c[2]));
    state.SetItemsProcessed(state.iterations() * std::int64_t(q.queries.size()));
}
BENCHMARK(BM_ClosestIndexGrid)->Unit(benchmark::kMillisecond);

void BM_ClosestIndexLinear(benchmark::State& state) {
    Quantised& q = quantised();
    for (auto _ : state)
        for (const auto& c : q.queries)
            benchmark::DoNotOptimize(q.palette.ClosestIndexLinear(c[0], c[1], c[2]));
    state.SetItemsProcessed(state.iterations() * std::int64_t(q.queries.size()));
}
BENCHMARK(BM_ClosestIndexLinear)->Unit(benchmark::kMillisecond);

// The coder as first written: each table entry holds its whole string, found by a linear scan.
class LinearLzw {
public:
    explicit LinearLzw(std::vector<std::uint8_t>& out) : mOut(out) {}
    void encode(const std::vector<std::uint16_t>& pixels) {
        clearCode = 256;
        endCode = 257;
        firstFree = 258;
        ResetTable();
        int count = 1;
        WriteCode(clearCode);
        for (const std::uint16_t value : pixels) {
            const int code = CompressPixel(std::uint8_t(value), count);
            if (code >= 0)
                WriteCode(code);
            ++count;
            if (nextCode >= 511) {
                WriteCode(FindString(pending));
                WriteCode(clearCode);
                ResetTable();
                count = 1;
            }
        }
        WriteCode(FindString(pending));
        WriteCode(endCode);
    }

private:
    int FindString(const std::vector<std::uint8_t>& s) const {
        if (s.size() == 1)
            return s[0];
        for (int code = firstFree; code < nextCode; ++code) {
            const auto& entry = table[std::size_t(code)];
            if (entry.size() == s.size() && entry == s)
                return code;
        }
        return -1;
    }
    int CompressPixel(std::uint8_t value, int count) {
        if (count == 1) {
            pending.assign(1, value);
            return -1;
        }
        candidate = pending;
        candidate.push_back(value);
        if (FindString(candidate) >= 0) {
            pending.swap(candidate);
            return -1;
        }
        const int code = FindString(pending);
        table[std::size_t(nextCode++)] = candidate;
        pending.assign(1, value);
        return code;
    }
    void ResetTable() { nextCode = firstFree; }
    void WriteCode(int code) {
        bits |= std::uint32_t(code) << bitCount;
        bitCount += 9;
        while (bitCount >= 8) {
            byte(int(bits & 0xFF));
            bits >>= 8;
            bitCount -= 8;
        }
        if (code == endCode) {
            byte(int(bits & 0xFF));
            byte(-1);
        }
    }
    void byte(int value) {
        if (value >= 0) {
            block.push_back(std::uint8_t(value));
            if (block.size() == 255)
                flush();
            return;
        }
        if (!block.empty())
            flush();
        flush();
    }
    void flush() {
        mOut.push_back(std::uint8_t(block.size()));
        mOut.insert(mOut.end(), block.begin(), block.end());
        block.clear();
    }

    std::vector<std::uint8_t>& mOut;
    std::vector<std::vector<std::uint8_t>> table = std::vector<std::vector<std::uint8_t>>(512);
    std::vector<std::uint8_t> pending, candidate, block;
    int clearCode = 0, endCode = 0, firstFree = 0, nextCode = 0;
    std::uint32_t bits = 0;
    int bitCount = 0;
};

std::vector<std::uint8_t> encodeHashed(const std::vector<std::uint16_t>& pixels) {
    std::vector<std::uint8_t> out;
    GifLzwCoder coder(out);
    coder.Initialise(8);
    int count = 1;
    coder.WriteCode(coder.clearCode());
    for (const std::uint16_t value : pixels) {
        coder.EncodePixel(value, count);
    }
    coder.FinishStream();
    return out;
}

void BM_LzwHashed(benchmark::State& state) {
    const auto& pixels = quantised().indices;
    for (auto _ : state)
        benchmark::DoNotOptimize(encodeHashed(pixels));
    state.SetItemsProcessed(state.iterations() * std::int64_t(pixels.size()));
}
BENCHMARK(BM_LzwHashed)->Unit(benchmark::kMillisecond);

void BM_LzwLinear(benchmark::State& state) {
    const auto& pixels = quantised().indices;
    std::vector<std::uint8_t> check;
    LinearLzw(check).encode(pixels);
    if (check != encodeHashed(pixels)) {
        state.SkipWithError("the two coders disagree");
        return;
    }
    for (auto _ : state) {
        std::vector<std::uint8_t> out;
        LinearLzw(out).encode(pixels);
        benchmark::DoNotOptimize(out);
    }
    state.SetItemsProcessed(state.iterations() * std::int64_t(pixels.size()));
}
BENCHMARK(BM_LzwLinear)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
