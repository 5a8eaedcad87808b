#include "audio/MidiFile.h"

#include <algorithm>

namespace {

constexpr std::int64_t kDefaultTempo = 500000; // microseconds per quarter note: 120 bpm

std::uint32_t bigEndian(const char* p, int bytes) {
    std::uint32_t value = 0;
    for (int i = 0; i < bytes; ++i)
        value = (value << 8) | std::uint8_t(p[i]);
    return value;
}

// A variable-length number of at most four bytes; false when it runs past `end`.
bool readVarLen(const char*& p, const char* end, std::int64_t& value) {
    value = 0;
    for (int i = 0; i < 4; ++i) {
        if (p >= end)
            return false;
        const std::uint8_t byte = std::uint8_t(*p++);
        value = (value << 7) | (byte & 0x7f);
        if (!(byte & 0x80))
            return true;
    }
    return false;
}

// The standard MIDI file inside a RIFF "RMID" wrapper, or the bytes as they are.
QByteArray unwrapRiff(const QByteArray& bytes) {
    if (bytes.size() < 12 || !bytes.startsWith("RIFF") || bytes.mid(8, 4) != "RMID")
        return bytes;
    qsizetype at = 12;
    while (at + 8 <= bytes.size()) {
        // RIFF sizes are little-endian.
        const auto* s = reinterpret_cast<const std::uint8_t*>(bytes.constData() + at + 4);
        const qsizetype length =
            qsizetype(s[0] | (s[1] << 8) | (s[2] << 16) | (quint32(s[3]) << 24));
        if (bytes.mid(at, 4) == "data")
            return bytes.mid(at + 8, length);
        if (length < 0 || length > bytes.size())
            break;
        at += 8 + length + (length & 1);
    }
    return {};
}

} // namespace

bool MidiFile::read(const QByteArray& bytes, QString& reason) {
    *this = MidiFile();
    mSmf = unwrapRiff(bytes);
    const char* data = mSmf.constData();
    const std::int64_t size = mSmf.size();
    if (size < 14 || !mSmf.startsWith("MThd")) {
        reason = QStringLiteral("no MIDI header");
        return false;
    }
    const std::int64_t headerLength = bigEndian(data + 4, 4);
    if (headerLength < 6 || 8 + headerLength > size) {
        reason = QStringLiteral("damaged MIDI header");
        return false;
    }
    const int division = int(bigEndian(data + 12, 2));
    if (division & 0x8000) {
        const int framesPerSecond = -int(std::int8_t(division >> 8));
        const int ticksPerFrame = division & 0xff;
        mSmpteTicksPerSecond =
            double(framesPerSecond == 29 ? 29.97 : framesPerSecond) * ticksPerFrame;
        if (mSmpteTicksPerSecond <= 0) {
            reason = QStringLiteral("bad time division");
            return false;
        }
    } else {
        mTicksPerQuarter = division;
        if (mTicksPerQuarter == 0) {
            reason = QStringLiteral("bad time division");
            return false;
        }
    }

    int tracks = 0;
    std::int64_t at = 8 + headerLength;
    while (at + 8 <= size) {
        const std::int64_t length = bigEndian(data + at + 4, 4);
        const std::int64_t available = std::min(length, size - at - 8);
        if (mSmf.mid(qsizetype(at), 4) == "MTrk") {
            if (!readTrack(data + at + 8, available, reason))
                return false;
            ++tracks;
        }
        at += 8 + length;
    }
    if (tracks == 0) {
        reason = QStringLiteral("no tracks");
        return false;
    }
    std::stable_sort(mTempos.begin(), mTempos.end(),
                     [](const Tempo& a, const Tempo& b) { return a.tick < b.tick; });
    return true;
}

bool MidiFile::readTrack(const char* data, std::int64_t size, QString& reason) {
    const char* p = data;
    const char* end = data + size;
    std::int64_t tick = 0;
    std::uint8_t running = 0;
    while (p < end) {
        std::int64_t delta = 0;
        if (!readVarLen(p, end, delta))
            break; // a cut track ends where its bytes end
        tick += delta;
        if (p >= end)
            break;
        std::uint8_t status = std::uint8_t(*p);
        if (status & 0x80) {
            ++p;
        } else if (running) {
            status = running;
        } else {
            reason = QStringLiteral("data byte without status");
            return false;
        }
        if (status == 0xff) {
            if (p >= end)
                break;
            const std::uint8_t type = std::uint8_t(*p++);
            std::int64_t length = 0;
            if (!readVarLen(p, end, length) || length > end - p)
                break;
            if (type == 0x51 && length == 3 && !mSmpteTicksPerSecond) {
                const std::int64_t tempo = bigEndian(p, 3);
                if (tempo > 0)
                    mTempos.push_back({tick, tempo});
            }
            p += length;
            if (type == 0x2f)
                break;
        } else if (status == 0xf0 || status == 0xf7) {
            std::int64_t length = 0;
            if (!readVarLen(p, end, length) || length > end - p)
                break;
            p += length;
        } else if (status >= 0xf0) {
            reason = QStringLiteral("unknown system message");
            return false;
        } else {
            running = status;
            const int dataBytes = (status & 0xf0) == 0xc0 || (status & 0xf0) == 0xd0 ? 1 : 2;
            if (dataBytes > end - p)
                break;
            p += dataBytes;
        }
        mEndTick = std::max(mEndTick, tick);
    }
    return true;
}

double MidiFile::msAtTick(std::int64_t tick) const {
    if (mSmpteTicksPerSecond > 0)
        return double(tick) * 1000.0 / mSmpteTicksPerSecond;
    double ms = 0;
    std::int64_t from = 0;
    std::int64_t tempo = kDefaultTempo;
    for (const Tempo& change : mTempos) {
        if (change.tick >= tick)
            break;
        ms += double(change.tick - from) * double(tempo) / 1000.0 / mTicksPerQuarter;
        from = change.tick;
        tempo = change.microsecondsPerQuarter;
    }
    return ms + double(tick - from) * double(tempo) / 1000.0 / mTicksPerQuarter;
}

std::int64_t MidiFile::tickAtMs(double ms) const {
    if (mSmpteTicksPerSecond > 0)
        return std::int64_t(ms * mSmpteTicksPerSecond / 1000.0);
    double at = 0;
    std::int64_t from = 0;
    std::int64_t tempo = kDefaultTempo;
    for (const Tempo& change : mTempos) {
        const double next =
            at + double(change.tick - from) * double(tempo) / 1000.0 / mTicksPerQuarter;
        if (next > ms)
            break;
        at = next;
        from = change.tick;
        tempo = change.microsecondsPerQuarter;
    }
    return from + std::int64_t((ms - at) * 1000.0 * mTicksPerQuarter / double(tempo));
}
