#include "AudioTestUtil.h"

#include "audio/modMCI.h"

#include <QFile>
#include <cmath>

namespace audiotest {

namespace {

void putLE(QByteArray& out, quint32 value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out += char((value >> (8 * i)) & 0xff);
}

void putBE(QByteArray& out, quint32 value, int bytes) {
    for (int i = bytes - 1; i >= 0; --i)
        out += char((value >> (8 * i)) & 0xff);
}

void putVarLen(QByteArray& out, quint32 value) {
    QByteArray bytes(1, char(value & 0x7f));
    while (value >>= 7)
        bytes.prepend(char(0x80 | (value & 0x7f)));
    out += bytes;
}

} // namespace

QByteArray wavBytes(int samplesPerSec, int bitsPerSample, int channels, int frames) {
    const int align = channels * bitsPerSample / 8;
    QByteArray data;
    for (int f = 0; f < frames; ++f) {
        const double v = std::sin(2 * M_PI * 440.0 * f / samplesPerSec) * 0.5;
        for (int c = 0; c < channels; ++c) {
            if (bitsPerSample == 8)
                data += char(quint8(128 + int(v * 127)));
            else
                putLE(data, quint16(qint16(v * 32767)), 2);
        }
    }
    QByteArray out("RIFF");
    putLE(out, quint32(36 + data.size()), 4);
    out += "WAVEfmt ";
    putLE(out, 16, 4);
    putLE(out, 1, 2);
    putLE(out, quint32(channels), 2);
    putLE(out, quint32(samplesPerSec), 4);
    putLE(out, quint32(samplesPerSec * align), 4);
    putLE(out, quint32(align), 2);
    putLE(out, quint32(bitsPerSample), 2);
    out += "data";
    putLE(out, quint32(data.size()), 4);
    return out + data;
}

QByteArray midiBytes(int ticksPerQuarter, const std::vector<std::pair<int, int>>& tempos,
                     int endTick) {
    QByteArray track;
    int at = 0;
    for (const auto& [tick, tempo] : tempos) {
        putVarLen(track, quint32(tick - at));
        at = tick;
        track += QByteArray::fromHex("ff5103");
        putBE(track, quint32(tempo), 3);
        if (tick == 0)
            track += QByteArray::fromHex("00c000"); // program 0 at the start
    }
    putVarLen(track, 0);
    track += QByteArray::fromHex("903c64");
    putVarLen(track, quint32(endTick - at));
    track += QByteArray::fromHex("803c40");
    putVarLen(track, 0);
    track += QByteArray::fromHex("ff2f00");
    QByteArray out("MThd");
    putBE(out, 6, 4);
    putBE(out, 0, 2);
    putBE(out, 1, 2);
    putBE(out, quint32(ticksPerQuarter), 2);
    out += "MTrk";
    putBE(out, quint32(track.size()), 4);
    return out + track;
}

void writeFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

QString ask(const QString& command) {
    QString reply;
    const long error = mciSendString(command, &reply);
    return error ? QStringLiteral("error %1").arg(error) : reply;
}

} // namespace audiotest
