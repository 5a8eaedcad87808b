#pragma once

#include "audio/AudioBackend.h"
#include "audio/MciCommand.h"
#include "audio/MidiFile.h"
#include "audio/MidiRenderer.h"
#include "audio/SoundFile.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <vector>

// One open sound object of the service, known by its alias: a wave sound (from a file or
// recorded), a MIDI sequence, or a sound file opened as a media file. Lengths and positions are
// kept in frames of the sound (for MIDI, frames of its rendering) and given in the time format
// that `set ... time format` chose.
class MciDevice {
public:
    enum class Type { WaveAudio, Sequencer, MpegVideo };

    MciDevice(Type type, QString alias, QString element, long id);
    ~MciDevice();
    MciDevice(const MciDevice&) = delete;
    MciDevice& operator=(const MciDevice&) = delete;

    // Reads the element (an empty one makes an empty wave sound): 0 or the error of the open.
    long load();

    // The commands on an open device; each parses its own words.
    long play(MciWords& words);
    long record(MciWords& words);
    long stop();
    long pause();
    long resume();
    long seek(MciWords& words);
    long save(MciWords& words);
    long set(MciWords& words);
    long setaudio(MciWords& words);
    long status(MciWords& words, QString& answer);
    long info(MciWords& words, QString& answer);
    long capability(MciWords& words, QString& answer);

    long id() const { return mId; }
    const QString& alias() const { return mAlias; }
    // The output stream's first-frame time of the last play (0 when none), for measuring.
    std::int64_t firstFrameTime() const;

private:
    enum class Mode { Stopped, Playing, Paused, Recording };
    enum class TimeFormat { Milliseconds, Samples, Bytes };

    bool isMidi() const { return mMidiLoaded; }
    // A recording runs or waits paused: stopping it keeps what was taken.
    bool recordingOpen() const {
        return mMode == Mode::Recording || (mMode == Mode::Paused && mRecordPaused);
    }
    // Takes in what the audio thread has done since the last command.
    void settle();
    void finishRecording();
    void stopOutput();
    long loadMidi(const QByteArray& bytes);
    long ensureSamples();
    long ensureOutput();
    // Sets the synthesiser to play from `from` (frames).
    long cueSequence(std::int64_t from);
    std::int64_t position() const;
    std::int64_t length() const;
    int frameRate() const;
    std::int64_t toFrames(long long value) const;
    long long fromFrames(std::int64_t frames) const;
    long takeTime(MciWords& words, std::int64_t& frames);
    // The "from" and "to" of play and record, in frames.
    struct Span {
        bool hasFrom = false;
        bool hasTo = false;
        std::int64_t from = 0;
        std::int64_t to = 0;
    };
    long takeSpanWord(MciWords& words, Span& span, bool& taken);
    long statusItem(MciWords& words, QString& answer);
    void applyGains();

    Type mType;
    QString mAlias;
    QString mElement;
    long mId;

    Mode mMode = Mode::Stopped;
    TimeFormat mTimeFormat = TimeFormat::Milliseconds;
    SoundFormat mFormat{11025, 1, 8};
    int mAlignment = 1;
    int mBytesPerSec = 11025;
    std::int64_t mLength = 0;   // frames
    std::int64_t mPosition = 0; // frames, while neither playing nor recording
    std::int64_t mPlayEnd = 0;

    std::shared_ptr<std::vector<std::int16_t>> mSamples; // wave data once decoded or recorded
    bool mMidiLoaded = false;
    MidiFile mMidi;
    std::unique_ptr<MidiRenderer> mRenderer;
    std::unique_ptr<OutputStream> mOutput;
    std::unique_ptr<InputStream> mInput;
    std::int64_t mRecordStart = 0;
    bool mRecordPaused = false;

    int mVolume = 1000;
    int mLeftVolume = 1000;
    int mRightVolume = 1000;
    bool mLeftOn = true;
    bool mRightOn = true;
};
