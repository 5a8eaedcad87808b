// Runs a fuzz target over its seeds and over mutations of them for a bounded time, so the
// targets run under the sanitizers of any build without libFuzzer.
// TESSALY_FUZZ_SECONDS sets the time (6 seconds unless told).
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
    const int steps = 1 + int(random() % 4);
    for (int s = 0; s < steps; ++s) {
        const auto size = std::size_t(input.size());
        switch (random() % 7) {
        case 0: // flip a bit
            if (size)
                input[int(random() % size)] ^= char(1 << (random() % 8));
            break;
        case 1: { // an interesting value
            static const std::uint8_t values[] = {0, 1, 0x7F, 0x80, 0xFF, 0xFE, 0x10, 0x40};
            if (size)
                input[int(random() % size)] = char(values[random() % sizeof values]);
            break;
        }
        case 2: // truncate
            if (size)
                input.truncate(int(random() % size));
            break;
        case 3: { // insert random bytes
            QByteArray extra;
            for (int i = int(random() % 16); i >= 0; --i)
                extra.append(char(random()));
            input.insert(size ? int(random() % size) : 0, extra);
            break;
        }
        case 4: // duplicate a chunk
            if (size > 2) {
                const int from = int(random() % size);
                const int length =
                    int(random() % std::min<std::size_t>(64, size - std::size_t(from)));
                input.insert(int(random() % size), input.mid(from, length));
            }
            break;
        case 5: // a big 16-bit number somewhere in the first bytes
            if (size > 4) {
                const int at = int(random() % std::min<std::size_t>(size - 1, 40));
                input[at] = char(random());
                input[at + 1] = char(random() % 4 ? random() : 0xFF);
            }
            break;
        default: // overwrite a run
            if (size) {
                const int at = int(random() % size);
                for (int i = at; i < std::min<int>(int(size), at + 8); ++i)
                    input[i] = char(random());
            }
            break;
        }
    }
    return input;
}

} // namespace

#ifndef FUZZ_SUITE
#define FUZZ_SUITE Fuzz
#endif

TEST(FUZZ_SUITE, SeedsAndMutationsRunCleanly) {
    const std::vector<QByteArray> seeds = fuzzSeeds();
    ASSERT_FALSE(seeds.empty());
    // TESSALY_FUZZ_WRITE_SEEDS=folder writes the seeds there, as a corpus for libFuzzer.
    if (qEnvironmentVariableIsSet("TESSALY_FUZZ_WRITE_SEEDS")) {
        const QString folder = qEnvironmentVariable("TESSALY_FUZZ_WRITE_SEEDS");
        for (std::size_t i = 0; i < seeds.size(); ++i) {
            QFile file(folder + QStringLiteral("/seed-%1").arg(i));
            if (file.open(QIODevice::WriteOnly))
                file.write(seeds[i]);
        }
    }
    for (const QByteArray& seed : seeds)
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(seed.constData()),
                               std::size_t(seed.size()));
    const double seconds = qEnvironmentVariableIsSet("TESSALY_FUZZ_SECONDS")
                               ? qEnvironmentVariable("TESSALY_FUZZ_SECONDS").toDouble()
                               : 6.0;
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::milliseconds(static_cast<long long>(seconds * 1000));
    std::mt19937 random(20261122);
    long runs = 0;
    while (std::chrono::steady_clock::now() < end) {
        const QByteArray input = mutate(seeds[random() % seeds.size()], random);
        LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(input.constData()),
                               std::size_t(input.size()));
        ++runs;
    }
    RecordProperty("runs", int(runs));
    std::printf("%ld mutated inputs in %.1f s\n", runs, seconds);
}
