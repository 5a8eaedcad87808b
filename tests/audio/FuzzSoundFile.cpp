// Fuzz target: any bytes as a sound file under one of the names the service knows; opening,
// asking its format and decoding it give an answer or an error, never a crash.
#include "AudioTestUtil.h"
#include "audio/MidiFile.h"
#include "audio/SoundFile.h"
#include "audio/modMCI.h"

#include <QDir>
#include <QTemporaryDir>
#include <QtEndian>
#include <cstdlib>

namespace {
const char* const kExtensions[] = {"wav", "au", "aiff", "mid", "rmi", "mp3"};
constexpr std::size_t kExtensionCount = sizeof kExtensions / sizeof kExtensions[0];
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static QTemporaryDir dir;
    if (size < 1)
        return 0;
    const QString path = QDir(dir.path())
                             .filePath(QStringLiteral("input.") +
                                       QLatin1String(kExtensions[data[0] % kExtensionCount]));
    const QByteArray bytes(reinterpret_cast<const char*>(data + 1), qsizetype(size - 1));
    audiotest::writeFile(path, bytes);

    const long opened = mciSendString(QStringLiteral("open \"%1\" alias f").arg(path));
    if (opened == 0) {
        QString length;
        if (mciSendString(QStringLiteral("status f length"), &length) != 0 ||
            length.toLongLong() < 0)
            std::abort();
        mciSendString(QStringLiteral("status f samplespersec"));
        mciSendString(QStringLiteral("close f"));
    }
    MidiFile midi;
    QString reason;
    if (midi.read(bytes, reason)) {
        if (midi.lengthMs() < 0 || midi.tickAtMs(midi.lengthMs() / 2) < 0)
            std::abort();
    } else if (reason.isEmpty()) {
        std::abort();
    }
    SoundFormat format;
    std::vector<std::int16_t> samples;
    if (decodeSoundFile(path, format, samples) == 0 &&
        (format.channels <= 0 || samples.size() % std::size_t(format.channels) != 0))
        std::abort();
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    auto with = [](int extension, const QByteArray& bytes) {
        return QByteArray(1, char(extension)) + bytes;
    };
    QByteArray au(".snd");
    for (quint32 field : {24u, 400u, 3u, 8000u, 1u}) {
        const quint32 big = qToBigEndian(field);
        au.append(reinterpret_cast<const char*>(&big), 4);
    }
    au += audiotest::wavBytes(8000, 16, 1, 200).mid(44);
    const QByteArray smf = audiotest::midiBytes(96, {{0, 500000}, {96, 300000}}, 300);
    QByteArray riff("RIFF");
    const quint32 riffSize = quint32(12 + smf.size());
    const quint32 dataSize = quint32(smf.size());
    riff.append(reinterpret_cast<const char*>(&riffSize), 4);
    riff += "RMIDdata";
    riff.append(reinterpret_cast<const char*>(&dataSize), 4);
    riff += smf;
    return {with(0, audiotest::wavBytes(8000, 16, 1, 400)),
            with(0, audiotest::wavBytes(11025, 8, 2, 300)),
            with(1, au),
            with(3, smf),
            with(4, riff),
            with(5, QByteArray("ID3\x03\0\0\0\0\0\0", 10) + QByteArray(64, '\xff'))};
}
