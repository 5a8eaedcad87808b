// Runs a fuzz target over its seeds and over mutations of them for a bounded time, so the
// targets run under the sanitizers of any build without libFuzzer.
// TESSALY_FUZZ_SECONDS sets the time (6 seconds unless told); FUZZ_SUITE names the suite.
#include <QByteArray>
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
        const int kind = int(random() % 4);
        if (kind == 0 && size) // flip a bit
            input[at] ^= char(1 << (random() % 8));
        else if (kind == 1)
            input.truncate(at);
        else if (kind == 2) // a copy of a chunk
            input.insert(at, input.mid(qsizetype(random() % std::size_t(size + 1)),
                                       1 + qsizetype(random() % 64)));
        else if (size > 2) // a random 16-bit number among the header's first bytes
            input.replace(at % std::min<qsizetype>(size - 1, 40), 2,
                          QByteArray(1, char(random())) + char(random()));
    }
    return input;
}

void runOne(const QByteArray& input) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                           std::size_t(input.size()));
}

} // namespace

TEST(FUZZ_SUITE, SeedsAndMutationsRunCleanly) {
    const std::vector<QByteArray> seeds = fuzzSeeds();
    ASSERT_FALSE(seeds.empty());
    for (const QByteArray& seed : seeds)
        runOne(seed);
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
