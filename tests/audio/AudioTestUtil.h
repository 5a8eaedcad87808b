#pragma once

#include <QByteArray>
#include <QString>
#include <utility>
#include <vector>

namespace audiotest {

// A PCM WAV file of a 440 Hz tone.
QByteArray wavBytes(int samplesPerSec, int bitsPerSample, int channels, int frames);

// A one-track MIDI file: at `ticksPerQuarter`, the tempo changes (tick, microseconds per
// quarter) and one note held from tick 0 to `endTick`.
QByteArray midiBytes(int ticksPerQuarter, const std::vector<std::pair<int, int>>& tempos,
                     int endTick);

void writeFile(const QString& path, const QByteArray& bytes);

// The reply of a query, or "error N".
QString ask(const QString& command);

} // namespace audiotest
