// Fuzz target: any text as a command string to the sound service, with a WAV and a MIDI file
// open under aliases; the service answers a number and never crashes. Commands that write files
// are left out, so a mutated path cannot write anywhere.
#include "AudioTestUtil.h"
#include "audio/modMCI.h"

#include <QDir>
#include <QTemporaryDir>
#include <cstdlib>

namespace {

QTemporaryDir& folder() {
    static QTemporaryDir dir;
    return dir;
}

QString fixture(const QString& name) {
    return QDir(folder().path()).filePath(name);
}

void openFixtures() {
    static const bool written = [] {
        audiotest::writeFile(fixture(QStringLiteral("a b.wav")),
                             audiotest::wavBytes(8000, 16, 1, 800));
        audiotest::writeFile(fixture(QStringLiteral("t.mid")),
                             audiotest::midiBytes(96, {{0, 500000}, {48, 250000}}, 96));
        return true;
    }();
    Q_UNUSED(written);
    mciSendString(QStringLiteral("open \"%1\" alias w").arg(fixture(QStringLiteral("a b.wav"))));
    mciSendString(QStringLiteral("open \"%1\" alias m").arg(fixture(QStringLiteral("t.mid"))));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString command = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    if (command.contains(QLatin1String("save"), Qt::CaseInsensitive))
        return 0;
    openFixtures();
    QString answer;
    const long result = mciSendString(command, &answer);
    if (result < 0 || (result != 0 && !answer.isEmpty()) ||
        (result != 0 && mciGetErrorString(result).isEmpty()))
        std::abort();
    mciSendString(QStringLiteral("close all"));
    return 0;
}

std::vector<QByteArray> fuzzSeeds() {
    const QByteArray wav = fixture(QStringLiteral("a b.wav")).toUtf8();
    return {"status w mode",
            "status w length",
            "set w time format samples",
            "play w from 1 to 50 notify",
            "seek w to end",
            "status m position wait",
            "play m from 200",
            "setaudio w left volume to 500",
            "open waveaudio!\"" + wav + "\" alias x",
            "open \"" + wav + "\" type waveaudio alias y shareable",
            "open new type waveaudio alias r buffer 9",
            "record w to 20",
            "set w time format ms alignment 2 channels 1 bitspersample 16 samplespersec 8000",
            "capability w can record",
            "info m product",
            "pause w",
            "close all"};
}
