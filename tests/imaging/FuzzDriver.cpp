// Runs a fuzz target over its seeds and over mutations of them for a bounded time, so the
// targets run under the sanitizers of any build without libFuzzer.
// TESSALY_FUZZ_SECONDS sets the time (6 seconds unless told); TESSALY_FUZZ_WRITE_SEEDS=folder
// writes the seeds there, as a corpus for libFuzzer.
#include <QByteArray>
#include <QFile>
#include <QString>
#include <chrono>
#include <cstdint>
#include <gtest/gtest.h>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
std::vector<QByteArray> fuzzSeeds();

namespace {

QByteArray mutate(QByteArray input, std::mt19937& random) {
    for (int steps = 1 + int(random() % 4); steps > 0; --steps) {
        const qsizetype size = input.size();
        const qsizetype at = size ? qsizetype(random() % std::size_t(size)) : 0;
        switch (random() % 6) {
        case 0: // flip a bit
            if (size)
                input[at] ^= char(1 << (random() % 8));
            break;
        case 1: // an interesting value
            if (size)
                input[at] = "\x00\x01\x7F\x80\xFF\xFE\x10\x40"[random() % 8];
            break;
        case 2:
            input.truncate(at);
            break;
        case 3: // a run of one random byte
            input.insert(at, QByteArray(1 + int(random() % 16), char(random())));
            break;
        case 4: // a copy of a chunk
            input.insert(at, input.mid(qsizetype(random() % std::size_t(size + 1)),
                                       1 + qsizetype(random() % 64)));
            break;
        default: // a random 16-bit number among the header's first bytes
            if (size > 2) {
                const qsizetype field = at % std::min<qsizetype>(size - 1, 40);
                input[field] = char(random());
                input[field + 1] = char(random());
            }
            break;
        }
    }
    return input;
}

void runOne(const QByteArray& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                           std::size_t(input.size()));
}

} // namespace

#ifndef FUZZ_SUITE
#define FUZZ_SUITE Fuzz
#endif

TEST(FUZZ_SUITE, SeedsAndMutationsRunCleanly) {
    const std::vector<QByteArray> seeds = fuzzSeeds();
    ASSERT_FALSE(seeds.empty());
    const QString corpus = qEnvironmentVariable("TESSALY_FUZZ_WRITE_SEEDS");
    for (std::size_t i = 0; i < seeds.size(); ++i) {
        QFile file(corpus + QStringLiteral("/seed-%1").arg(i));
        if (!corpus.isEmpty() && file.open(QIODevice::WriteOnly))
            file.write(seeds[i]);
        runOne(seeds[i]);
    }
    bool timed = false;
    const double seconds = qEnvironmentVariable("TESSALY_FUZZ_SECONDS").toDouble(&timed);
    const auto end =
        std::chrono::steady_clock::now() +
        std::chrono::milliseconds(static_cast<long long>((timed ? seconds : 6.0) * 1000));
    std::mt19937 random(20261122);
    long runs = 0;
    for (; std::chrono::steady_clock::now() < end; ++runs)
        runOne(mutate(seeds[random() % seeds.size()], random));
    RecordProperty("runs", int(runs));
}
