#include "audio/MciDevice.h"

#include "audio/modMCI.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cmath>

namespace {

// A recording without an end point stops by itself after this many seconds.
constexpr std::int64_t kLongestOpenRecordSeconds = 600;
// A MIDI file whose events run longer than a day is damaged.
constexpr double kLongestSequenceMs = 24.0 * 3600 * 1000;
// The most a recording may take in memory.
constexpr std::int64_t kLargestRecordBytes = std::int64_t(1) << 30;

bool looksLikeMidi(const QByteArray& head) {
    return head.startsWith("MThd") || (head.startsWith("RIFF") && head.mid(8, 4) == "RMID");
}

QString yesNo(bool value) {
    return value ? QStringLiteral("true") : QStringLiteral("false");
}

// Status items only a video device knows.
bool isVideoItem(const QString& word) {
    static const QStringList items{
        QStringLiteral("bitsperpel"), QStringLiteral("monitor"),    QStringLiteral("video"),
        QStringLiteral("nominal"),    QStringLiteral("frame"),      QStringLiteral("window"),
        QStringLiteral("palette"),    QStringLiteral("stretch"),    QStringLiteral("still"),
        QStringLiteral("forward"),    QStringLiteral("brightness"), QStringLiteral("color"),
        QStringLiteral("contrast"),   QStringLiteral("tint"),       QStringLiteral("sharpness"),
        QStringLiteral("gamma"),      QStringLiteral("unsaved")};
    return items.contains(word, Qt::CaseInsensitive);
}

} // namespace

MciDevice::MciDevice(Type type, QString alias, QString element, long id)
    : mType(type), mAlias(std::move(alias)), mElement(std::move(element)), mId(id) {}

MciDevice::~MciDevice() {
    // The streams go first: their threads read the samples and the renderer.
    mOutput.reset();
    mInput.reset();
    MidiRenderer::recycle(std::move(mRenderer));
}

std::int64_t MciDevice::firstFrameTime() const {
    return mOutput ? mOutput->firstFrameTime() : 0;
}

// ---- Loading

long MciDevice::load() {
    if (mElement.isEmpty()) {
        if (mType != Type::WaveAudio)
            return Mci::FilenameRequired;
        mFormat = {11025, 1, 8};
        mSamples = std::make_shared<std::vector<std::int16_t>>();
        return Mci::NoError;
    }
    QFile file(mElement);
    if (!QFileInfo(mElement).isFile())
        return Mci::FileNotFound;
    if (!file.open(QIODevice::ReadOnly))
        return Mci::FileRead;
    const QByteArray head = file.peek(12);
    if (mType == Type::Sequencer || (mType == Type::MpegVideo && looksLikeMidi(head)))
        return loadMidi(file.readAll());
    file.close();
    const long error = probeSoundFile(mElement, mFormat, mLength);
    if (error)
        return error;
    mAlignment = mFormat.channels * std::max(1, mFormat.bitsPerSample / 8);
    mBytesPerSec = mFormat.samplesPerSec * mAlignment;
    return Mci::NoError;
}

long MciDevice::loadMidi(const QByteArray& bytes) {
    QString reason;
    if (!mMidi.read(bytes, reason) || mMidi.lengthMs() > kLongestSequenceMs)
        return Mci::InvalidFile;
    mMidiLoaded = true;
    mFormat = {MidiRenderer::kSamplesPerSec, MidiRenderer::kChannels, 16};
    mLength = std::llround(mMidi.lengthMs() * MidiRenderer::kSamplesPerSec / 1000.0);
    return Mci::NoError;
}

long MciDevice::ensureSamples() {
    if (isMidi() || mSamples)
        return Mci::NoError;
    auto samples = std::make_shared<std::vector<std::int16_t>>();
    SoundFormat decoded;
    if (const long error = decodeSoundFile(mElement, decoded, *samples))
        return error;
    if (decoded.channels != mFormat.channels || decoded.samplesPerSec != mFormat.samplesPerSec)
        return Mci::InvalidFile; // the file changed since it was opened
    mSamples = std::move(samples);
    // A damaged file may hold fewer frames than its header said.
    mLength = std::int64_t(mSamples->size()) / mFormat.channels;
    return Mci::NoError;
}

long MciDevice::cueSequence(std::int64_t from) {
    // The output is paused or not open yet, so its thread does not render now.
    if (!mRenderer)
        if (const long error = MidiRenderer::make(mMidi.smf(), mRenderer))
            return error;
    const std::int64_t tick = mMidi.tickAtMs(double(from) * 1000.0 / frameRate());
    return mRenderer->cue(tick) ? Mci::NoError : Mci::InvalidFile;
}

long MciDevice::ensureOutput() {
    if (mOutput)
        return Mci::NoError;
    OutputSource source;
    source.samplesPerSec = mFormat.samplesPerSec;
    source.channels = mFormat.channels;
    if (isMidi()) {
        if (!mRenderer)
            if (const long error = MidiRenderer::make(mMidi.smf(), mRenderer))
                return error;
        source.renderer = mRenderer.get();
    } else {
        if (const long error = ensureSamples())
            return error;
        source.pcm = mSamples;
    }
    const long error = OutputStream::open(source, mOutput);
    if (!error)
        applyGains();
    return error;
}

// ---- State

void MciDevice::settle() {
    if (mMode == Mode::Playing && mOutput && !mOutput->running()) {
        mPosition = mOutput->position();
        mOutput->pause();
        mMode = Mode::Stopped;
    } else if (mMode == Mode::Recording && mInput && !mInput->running()) {
        finishRecording();
    }
}

void MciDevice::finishRecording() {
    mInput->pause();
    const std::int64_t taken = mInput->frames();
    auto samples = std::make_shared<std::vector<std::int16_t>>();
    const std::size_t kept = std::size_t(mRecordStart * mFormat.channels);
    samples->reserve(kept + std::size_t(taken * mFormat.channels));
    if (mSamples)
        samples->insert(samples->end(), mSamples->begin(),
                        mSamples->begin() + std::ptrdiff_t(std::min(kept, mSamples->size())));
    samples->resize(kept, 0);
    samples->insert(samples->end(), mInput->samples(),
                    mInput->samples() + taken * mFormat.channels);
    mInput.reset();
    mOutput.reset(); // it handed out the old samples
    mSamples = std::move(samples);
    mLength = mRecordStart + taken;
    mPosition = mLength;
    mRecordPaused = false;
    mMode = Mode::Stopped;
}

void MciDevice::stopOutput() {
    if (mOutput && (mMode == Mode::Playing || mMode == Mode::Paused)) {
        mOutput->pause();
        if (mMode == Mode::Playing)
            mPosition = mOutput->position();
        mMode = Mode::Stopped;
    }
}

std::int64_t MciDevice::position() const {
    if (mMode == Mode::Playing && mOutput)
        return mOutput->position();
    if (recordingOpen() && mInput)
        return mRecordStart + mInput->frames();
    return mPosition;
}

std::int64_t MciDevice::length() const {
    if (mInput)
        return std::max(mLength, mRecordStart + mInput->frames());
    return mLength;
}

int MciDevice::frameRate() const {
    return std::max(1, mFormat.samplesPerSec);
}

std::int64_t MciDevice::toFrames(long long value) const {
    switch (mTimeFormat) {
    case TimeFormat::Samples:
        return value;
    case TimeFormat::Bytes:
        return value / std::max(1, mAlignment);
    case TimeFormat::Milliseconds:
        break;
    }
    return std::int64_t(std::llround(double(value) * frameRate() / 1000.0));
}

long long MciDevice::fromFrames(std::int64_t frames) const {
    switch (mTimeFormat) {
    case TimeFormat::Samples:
        return frames;
    case TimeFormat::Bytes:
        return frames * std::max(1, mAlignment);
    case TimeFormat::Milliseconds:
        break;
    }
    return std::llround(double(frames) * 1000.0 / frameRate());
}

long MciDevice::takeTime(MciWords& words, std::int64_t& frames) {
    long long value = 0;
    if (const long error = words.takeNumber(value))
        return error;
    frames = toFrames(value);
    return Mci::NoError;
}

void MciDevice::applyGains() {
    if (!mOutput)
        return;
    mOutput->setGains(mLeftOn ? mVolume * mLeftVolume / 1000 : 0,
                      mRightOn ? mVolume * mRightVolume / 1000 : 0);
}

// ---- Commands

// Takes a "from N" or "to N" clause into `span`; `taken` tells whether the next word was one.
// Each may stand once.
long MciDevice::takeSpanWord(MciWords& words, Span& span, bool& taken) {
    const bool isFrom = words.accept("from");
    taken = isFrom || words.accept("to");
    if (!taken)
        return Mci::NoError;
    bool& seen = isFrom ? span.hasFrom : span.hasTo;
    if (seen)
        return Mci::DuplicateFlags;
    seen = true;
    return takeTime(words, isFrom ? span.from : span.to);
}

long MciDevice::play(MciWords& words) {
    settle();
    Span span;
    while (!words.atEnd()) {
        bool taken = false;
        if (const long error = takeSpanWord(words, span, taken))
            return error;
        if (taken)
            continue;
        if (words.accept("fullscreen") || words.accept("window") || words.accept("reverse") ||
            words.accept("scan") || words.accept("slow") || words.accept("fast")) {
            return Mci::UnsupportedFunction;
        } else if (!words.accept("notify") && !words.accept("wait")) {
            // "wait" is taken but never waits: nothing may hold the user interface.
            return Mci::UnrecognizedKeyword;
        }
    }
    if (recordingOpen())
        finishRecording();
    if (const long error = ensureSamples())
        return error;
    const std::int64_t total = length();
    if (!span.hasFrom)
        span.from = position() >= total ? 0 : position(); // a finished sound plays again
    if (!span.hasTo)
        span.to = total;
    if (span.from > total || span.to > total || span.to < span.from)
        return Mci::OutOfRange;
    stopOutput();
    // Everything is ready before the device starts: a device that waits paused hands out
    // silence, which would come before the sound.
    if (isMidi()) {
        if (const long error = cueSequence(span.from))
            return error;
    }
    if (const long error = ensureOutput())
        return error;
    mPlayEnd = span.to;
    mOutput->start(span.from, span.to);
    mPosition = span.from;
    mMode = span.from < span.to ? Mode::Playing : Mode::Stopped;
    return Mci::NoError;
}

long MciDevice::record(MciWords& words) {
    if (mType != Type::WaveAudio || isMidi())
        return Mci::UnsupportedFunction;
    settle();
    Span span;
    while (!words.atEnd()) {
        bool taken = false;
        if (const long error = takeSpanWord(words, span, taken))
            return error;
        if (taken)
            continue;
        if (!words.accept("notify") && !words.accept("wait") && !words.accept("insert") &&
            !words.accept("overwrite")) {
            return Mci::UnrecognizedKeyword;
        }
    }
    if (recordingOpen())
        finishRecording();
    stopOutput();
    if (const long error = ensureSamples())
        return error;
    if (!span.hasFrom)
        span.from = std::min(mPosition, mLength);
    if (span.from > mLength)
        return Mci::OutOfRange;
    const std::int64_t capacity =
        span.hasTo ? span.to - span.from : kLongestOpenRecordSeconds * std::int64_t(frameRate());
    if (capacity <= 0)
        return Mci::OutOfRange;
    if (capacity * mFormat.channels * std::int64_t(sizeof(std::int16_t)) > kLargestRecordBytes)
        return Mci::OutOfMemory;
    if (const long error =
            InputStream::open(mFormat.samplesPerSec, mFormat.channels, capacity, mInput))
        return error;
    mRecordStart = span.from;
    mInput->start();
    mMode = Mode::Recording;
    return Mci::NoError;
}

long MciDevice::stop() {
    settle();
    if (recordingOpen())
        finishRecording();
    else
        stopOutput();
    return Mci::NoError;
}

long MciDevice::pause() {
    settle();
    if (mMode == Mode::Playing) {
        mOutput->pause();
        mPosition = mOutput->position();
        mMode = Mode::Paused;
    } else if (mMode == Mode::Recording) {
        mInput->pause();
        mRecordPaused = true;
        mMode = Mode::Paused;
    }
    return Mci::NoError;
}

long MciDevice::resume() {
    settle();
    if (mMode != Mode::Paused)
        return Mci::NoError;
    if (mRecordPaused) {
        mRecordPaused = false;
        mInput->start();
        mMode = Mode::Recording;
    } else if (isMidi()) {
        if (const long error = cueSequence(mPosition))
            return error;
        mOutput->start(mPosition, mPlayEnd);
        mMode = Mode::Playing;
    } else {
        mOutput->start(mPosition, mPlayEnd);
        mMode = Mode::Playing;
    }
    return Mci::NoError;
}

long MciDevice::seek(MciWords& words) {
    std::int64_t target = 0;
    if (words.accept({"to", "start"})) {
        target = 0;
    } else if (words.accept({"to", "end"})) {
        target = length();
    } else if (words.accept("to")) {
        if (const long error = takeTime(words, target))
            return error;
        if (target > length())
            return Mci::OutOfRange;
    } else {
        return words.atEnd() ? Mci::MissingParameter : Mci::UnrecognizedKeyword;
    }
    while (!words.atEnd())
        if (!words.accept("notify") && !words.accept("wait"))
            return Mci::UnrecognizedKeyword;
    stop();
    mPosition = target;
    return Mci::NoError;
}

long MciDevice::save(MciWords& words) {
    if (mType != Type::WaveAudio || isMidi())
        return Mci::UnsupportedFunction;
    QString file;
    if (!words.takeValue(file) || file.isEmpty())
        return Mci::FilenameRequired;
    while (!words.atEnd())
        if (!words.accept("notify") && !words.accept("wait"))
            return Mci::UnrecognizedKeyword;
    settle();
    if (mMode == Mode::Recording)
        return Mci::DeviceNotReady;
    if (const long error = ensureSamples())
        return error;
    const std::int64_t frames =
        std::min<std::int64_t>(mLength, std::int64_t(mSamples->size()) / mFormat.channels);
    if (const long error = writeWaveFile(file, mFormat, mSamples->data(), frames))
        return error;
    mElement = file;
    return Mci::NoError;
}

long MciDevice::set(MciWords& words) {
    SoundFormat format = mFormat;
    int alignment = mAlignment;
    int bytesPerSec = mBytesPerSec;
    bool formatChanged = false;
    auto number = [&words](int& target, long long low, long long high) -> long {
        long long value = 0;
        if (const long error = words.takeNumber(value))
            return error;
        if (value < low || value > high)
            return Mci::OutOfRange;
        target = int(value);
        return Mci::NoError;
    };
    while (!words.atEnd()) {
        long error = Mci::NoError;
        if (words.accept({"time", "format"})) {
            if (words.accept("ms") || words.accept("milliseconds"))
                mTimeFormat = TimeFormat::Milliseconds;
            else if (!isMidi() && words.accept("samples"))
                mTimeFormat = TimeFormat::Samples;
            else if (!isMidi() && words.accept("bytes"))
                mTimeFormat = TimeFormat::Bytes;
            else
                return words.atEnd() ? Mci::MissingParameter : Mci::BadTimeFormat;
        } else if (words.accept("channels")) {
            error = number(format.channels, 1, 8);
            formatChanged = true;
        } else if (words.accept("bitspersample")) {
            error = number(format.bitsPerSample, 8, 16);
            if (!error && format.bitsPerSample != 8 && format.bitsPerSample != 16)
                error = Mci::OutOfRange;
            formatChanged = true;
        } else if (words.accept("samplespersec")) {
            error = number(format.samplesPerSec, 1000, 192000);
            formatChanged = true;
        } else if (words.accept("alignment")) {
            error = number(alignment, 1, 64);
        } else if (words.accept("bytespersec")) {
            error = number(bytesPerSec, 1, 192000 * 64);
        } else if (words.accept({"format", "tag"})) {
            if (!words.accept("pcm") && !words.accept("1"))
                return words.atEnd() ? Mci::MissingParameter : Mci::OutOfRange;
        } else if (words.accept("audio")) {
            bool* left = &mLeftOn;
            bool* right = &mRightOn;
            if (words.accept("left"))
                right = nullptr;
            else if (words.accept("right"))
                left = nullptr;
            else if (!words.accept("all"))
                return words.atEnd() ? Mci::MissingParameter : Mci::BadConstant;
            bool on = true;
            if (words.accept("off"))
                on = false;
            else if (!words.accept("on"))
                return words.atEnd() ? Mci::MissingParameter : Mci::BadConstant;
            if (left)
                *left = on;
            if (right)
                *right = on;
            applyGains();
        } else if (words.accept("speed")) {
            long long speed = 0;
            if ((error = words.takeNumber(speed)))
                return error;
            if (speed != 1000)
                return Mci::UnsupportedFunction; // sounds play at their own rate only
        } else if (words.accept("video") || words.accept("door")) {
            return Mci::UnsupportedFunction;
        } else if (!words.accept("notify") && !words.accept("wait")) {
            return Mci::UnrecognizedKeyword;
        }
        if (error)
            return error;
    }
    if (formatChanged &&
        (format.channels != mFormat.channels || format.bitsPerSample != mFormat.bitsPerSample ||
         format.samplesPerSec != mFormat.samplesPerSec)) {
        // The wave format is chosen for an empty sound, before it records.
        if (mType != Type::WaveAudio || isMidi() || length() > 0 || mMode != Mode::Stopped)
            return Mci::NonapplicableFunction;
        mFormat = format;
        mOutput.reset();
    }
    mAlignment = alignment;
    mBytesPerSec = bytesPerSec;
    return Mci::NoError;
}

long MciDevice::setaudio(MciWords& words) {
    int* target = &mVolume;
    if (words.accept({"left", "volume"}))
        target = &mLeftVolume;
    else if (words.accept({"right", "volume"}))
        target = &mRightVolume;
    else if (!words.accept("volume"))
        return words.atEnd() ? Mci::MissingParameter : Mci::UnrecognizedKeyword;
    if (!words.accept("to"))
        return words.atEnd() ? Mci::MissingParameter : Mci::UnrecognizedKeyword;
    long long level = 0;
    if (const long error = words.takeNumber(level))
        return error;
    if (level > 1000)
        return Mci::OutOfRange;
    while (!words.atEnd())
        if (!words.accept("notify") && !words.accept("wait"))
            return Mci::UnrecognizedKeyword;
    *target = int(level);
    applyGains();
    return Mci::NoError;
}

long MciDevice::status(MciWords& words, QString& answer) {
    settle();
    if (words.atEnd())
        return Mci::MissingParameter;
    const long error = statusItem(words, answer);
    if (error)
        return error;
    while (!words.atEnd()) {
        if (words.accept("track")) { // one track only
            long long track = 0;
            if (const long trackError = words.takeNumber(track))
                return trackError;
        } else if (!words.accept("notify") && !words.accept("wait")) {
            return Mci::UnrecognizedKeyword;
        }
    }
    return Mci::NoError;
}

long MciDevice::statusItem(MciWords& words, QString& answer) {
    const bool wave = mType == Type::WaveAudio && !isMidi();
    if (words.accept("mode")) {
        switch (mMode) {
        case Mode::Playing:
            answer = QStringLiteral("playing");
            break;
        case Mode::Recording:
            answer = QStringLiteral("recording");
            break;
        case Mode::Paused:
            answer = QStringLiteral("paused");
            break;
        case Mode::Stopped:
            answer = QStringLiteral("stopped");
            break;
        }
    } else if (words.accept("length")) {
        answer = QString::number(fromFrames(length()));
    } else if (words.accept("position")) {
        answer = QString::number(fromFrames(position()));
    } else if (words.accept({"start", "position"})) {
        answer = QStringLiteral("0");
    } else if (words.accept("ready") || words.accept({"media", "present"})) {
        answer = yesNo(true);
    } else if (words.accept({"time", "format"})) {
        answer = mTimeFormat == TimeFormat::Milliseconds ? QStringLiteral("milliseconds")
                 : mTimeFormat == TimeFormat::Samples    ? QStringLiteral("samples")
                                                         : QStringLiteral("bytes");
    } else if (words.accept({"number", "of", "tracks"}) || words.accept({"current", "track"})) {
        answer = QStringLiteral("1");
    } else if (words.accept("volume")) {
        answer = QString::number(mVolume);
    } else if (words.accept({"left", "volume"})) {
        answer = QString::number(mLeftVolume);
    } else if (words.accept({"right", "volume"})) {
        answer = QString::number(mRightVolume);
    } else if (words.accept("speed")) {
        answer = QStringLiteral("1000");
    } else if (words.accept("audio")) {
        answer = mLeftOn || mRightOn ? QStringLiteral("on") : QStringLiteral("off");
    } else if (wave && words.accept("samplespersec")) {
        answer = QString::number(mFormat.samplesPerSec);
    } else if (wave && words.accept("bitspersample")) {
        answer = QString::number(mFormat.bitsPerSample);
    } else if (wave && words.accept("channels")) {
        answer = QString::number(mFormat.channels);
    } else if (wave && words.accept("bytespersec")) {
        answer = QString::number(mBytesPerSec);
    } else if (wave && words.accept("alignment")) {
        answer = QString::number(mAlignment);
    } else if (wave && words.accept({"format", "tag"})) {
        answer = QStringLiteral("pcm");
    } else if (isVideoItem(words.peek())) {
        return Mci::UnsupportedFunction;
    } else {
        return Mci::UnrecognizedKeyword;
    }
    return Mci::NoError;
}

long MciDevice::info(MciWords& words, QString& answer) {
    if (words.accept("product")) {
        answer = mType == Type::WaveAudio   ? QStringLiteral("Tessaly wave audio")
                 : mType == Type::Sequencer ? QStringLiteral("Tessaly MIDI sequencer")
                                            : QStringLiteral("Tessaly media player");
    } else if (words.accept("version")) {
        answer = QStringLiteral("1.0");
    } else if (words.accept("file")) {
        answer = mElement;
    } else {
        return words.atEnd() ? Mci::MissingParameter : Mci::UnrecognizedKeyword;
    }
    return words.atEnd() ? Mci::NoError : Mci::UnrecognizedKeyword;
}

long MciDevice::capability(MciWords& words, QString& answer) {
    const bool wave = mType == Type::WaveAudio && !isMidi();
    if (words.accept({"can", "play"}) || words.accept({"has", "audio"}) ||
        words.accept({"uses", "files"}) || words.accept({"compound", "device"}))
        answer = yesNo(true);
    else if (words.accept({"can", "record"}) || words.accept({"can", "save"}))
        answer = yesNo(wave);
    else if (words.accept({"has", "video"}) || words.accept({"can", "eject"}))
        answer = yesNo(false);
    else if (words.accept({"device", "type"}))
        answer = mType == Type::WaveAudio   ? QStringLiteral("waveaudio")
                 : mType == Type::Sequencer ? QStringLiteral("sequencer")
                                            : QStringLiteral("mpegvideo");
    else
        return words.atEnd() ? Mci::MissingParameter : Mci::UnrecognizedKeyword;
    return words.atEnd() ? Mci::NoError : Mci::UnrecognizedKeyword;
}
