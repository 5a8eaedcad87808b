// The sound service's costs the user feels: opening a long WAV and asking its length (every
// click on a sound in the browser), and the delay from a play command to the first frames the
// device is handed (measured inside the callback), with the device already open and with the
// open of the file and the device as a preview does it. SDL_AUDIODRIVER picks the device
// ("dummy" unless told).
#include "audio/MciService.h"
#include "audio/modMCI.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <chrono>
#include <cmath>
#include <thread>

namespace {

void putLE(QByteArray& out, quint32 value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out += char((value >> (8 * i)) & 0xff);
}

// A 16-bit stereo WAV of `seconds` at 44.1 kHz.
QString writeWav(const QTemporaryDir& dir, int seconds) {
    const int rate = 44100;
    const int frames = rate * seconds;
    QByteArray data;
    data.reserve(frames * 4);
    for (int f = 0; f < frames; ++f) {
        const auto v = quint16(qint16(std::sin(f * 0.0627) * 12000));
        putLE(data, v, 2);
        putLE(data, v, 2);
    }
    QByteArray wav("RIFF");
    putLE(wav, quint32(36 + data.size()), 4);
    wav += "WAVEfmt ";
    for (const auto& [value, bytes] : {std::pair{16u, 4},
                                       {1u, 2},
                                       {2u, 2},
                                       {quint32(rate), 4},
                                       {quint32(rate * 4), 4},
                                       {4u, 2},
                                       {16u, 2}})
        putLE(wav, value, bytes);
    wav += "data";
    putLE(wav, quint32(data.size()), 4);
    const QString path = QDir(dir.path()).filePath(QStringLiteral("long sound.wav"));
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(wav + data);
    return path;
}

const QString& sixtySecondWav() {
    static QTemporaryDir dir;
    static const QString path = writeWav(dir, 60);
    return path;
}

void OpenAndLengthOfSixtySecondWav(benchmark::State& state) {
    const QString open = QStringLiteral("open waveaudio!\"%1\" alias b").arg(sixtySecondWav());
    for (auto _ : state) {
        QString length;
        if (mciSendString(open) || mciSendString(QStringLiteral("status b length"), &length) ||
            length != QLatin1String("60000")) {
            state.SkipWithError("the WAV did not open with its length");
            break;
        }
        mciSendString(QStringLiteral("close b"));
    }
}
BENCHMARK(OpenAndLengthOfSixtySecondWav)->Unit(benchmark::kMicrosecond);

// Plays and waits for the callback's first frames; the iteration's time is that delay.
bool timePlay(benchmark::State& state, bool reopen) {
    if (reopen) {
        mciSendString(QStringLiteral("close b"));
    }
    const auto started = std::chrono::steady_clock::now();
    if (reopen &&
        mciSendString(QStringLiteral("open waveaudio!\"%1\" alias b").arg(sixtySecondWav())))
        return false;
    if (mciSendString(QStringLiteral("play b from 0")))
        return false;
    const std::int64_t start =
        std::chrono::duration_cast<std::chrono::nanoseconds>(started.time_since_epoch()).count();
    const auto giveUp = started + std::chrono::seconds(5);
    std::int64_t first = 0;
    while ((first = MciService::instance().firstFrameTime(QStringLiteral("b"))) == 0) {
        if (std::chrono::steady_clock::now() > giveUp)
            return false;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
    }
    state.SetIterationTime(double(first - start) / 1e9);
    mciSendString(QStringLiteral("stop b"));
    return true;
}

void PlayToFirstFrameOpenDevice(benchmark::State& state) {
    if (waveOutGetNumDevs() < 1) {
        state.SkipWithError("no sound output device");
        return;
    }
    mciSendString(QStringLiteral("open waveaudio!\"%1\" alias b").arg(sixtySecondWav()));
    mciSendString(QStringLiteral("play b from 0 to 1")); // opens the device once
    for (auto _ : state)
        if (!timePlay(state, false)) {
            state.SkipWithError("the first frames never came");
            break;
        }
    mciSendString(QStringLiteral("close b"));
}
BENCHMARK(PlayToFirstFrameOpenDevice)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(30);

void OpenAndPlayToFirstFrame(benchmark::State& state) {
    if (waveOutGetNumDevs() < 1) {
        state.SkipWithError("no sound output device");
        return;
    }
    for (auto _ : state)
        if (!timePlay(state, true)) {
            state.SkipWithError("the first frames never came");
            break;
        }
    mciSendString(QStringLiteral("close b"));
}
BENCHMARK(OpenAndPlayToFirstFrame)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(30);

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("SDL_AUDIODRIVER"))
        qputenv("SDL_AUDIODRIVER", "dummy");
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    mciSendString(QStringLiteral("close all"));
    return 0;
}
