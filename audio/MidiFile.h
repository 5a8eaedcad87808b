#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

// What the sound layer needs of a standard MIDI file: its bytes for the synthesiser and its
// timing, read from the tempo map of all tracks, so lengths and seeks are in milliseconds.
class MidiFile {
public:
    // Reads a standard MIDI file, or one wrapped in a RIFF "RMID" file. False with a reason
    // when the bytes are no MIDI file or are damaged.
    bool read(const QByteArray& bytes, QString& reason);

    // The standard MIDI file itself (without any RIFF wrapping).
    const QByteArray& smf() const { return mSmf; }
    // The last event of the longest track, in milliseconds.
    double lengthMs() const { return msAtTick(mEndTick); }
    std::int64_t endTick() const { return mEndTick; }
    double msAtTick(std::int64_t tick) const;
    std::int64_t tickAtMs(double ms) const;

private:
    struct Tempo {
        std::int64_t tick;
        std::int64_t microsecondsPerQuarter;
    };
    bool readTrack(const char* data, std::int64_t size, QString& reason);

    QByteArray mSmf;
    int mTicksPerQuarter = 96;
    double mSmpteTicksPerSecond = 0; // > 0 for SMPTE division: tempo plays no part
    std::vector<Tempo> mTempos;
    std::int64_t mEndTick = 0;
};
