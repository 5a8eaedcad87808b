#include "store/AMRConverter.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

#include <opencore-amrnb/interf_dec.h>
#include <opencore-amrnb/interf_enc.h>
#include <sndfile.h>
#include <soxr.h>

namespace {
constexpr int kRate = 8000;
constexpr int kFrameSamples = 160;
constexpr char kMagic[] = "#!AMR\n";
constexpr qsizetype kMagicSize = 6;
// The largest sound file read whole: an hour of 48 kHz stereo 16-bit.
constexpr qsizetype kMaxInputBytes = qsizetype(700) * 1024 * 1024;
// Bytes of a stored frame, its header byte included, by frame type; 0 for the types an AMR-NB
// stream cannot hold.
constexpr std::array<int, 16> kFrameBytes = {13, 14, 16, 18, 20, 21, 27, 32,
                                             6,  0,  0,  0,  0,  0,  0,  1};

// libsndfile reads from a buffer in memory through these.
struct MemoryFile {
    const QByteArray* bytes;
    sf_count_t at = 0;
};
sf_count_t memoryLength(void* user) {
    return static_cast<MemoryFile*>(user)->bytes->size();
}
sf_count_t memorySeek(sf_count_t offset, int whence, void* user) {
    auto* file = static_cast<MemoryFile*>(user);
    const sf_count_t size = file->bytes->size();
    sf_count_t to = offset;
    if (whence == SEEK_CUR)
        to = file->at + offset;
    else if (whence == SEEK_END)
        to = size + offset;
    file->at = std::clamp<sf_count_t>(to, 0, size);
    return file->at;
}
sf_count_t memoryRead(void* out, sf_count_t count, void* user) {
    auto* file = static_cast<MemoryFile*>(user);
    const sf_count_t n = std::clamp<sf_count_t>(file->bytes->size() - file->at, 0, count);
    std::memcpy(out, file->bytes->constData() + file->at, std::size_t(n));
    file->at += n;
    return n;
}
sf_count_t memoryWrite(const void*, sf_count_t, void*) {
    return 0;
}
sf_count_t memoryTell(void* user) {
    return static_cast<MemoryFile*>(user)->at;
}

// The frames of an open sound mixed down to one channel, at its own rate; closes the handle.
bool readMono(SNDFILE* handle, const SF_INFO& info, std::vector<float>& mono, int& rate) {
    if (!handle)
        return false;
    const int channels = info.channels;
    rate = info.samplerate;
    bool ok = channels > 0 && channels <= 256 && rate > 0;
    // The header's frame count may be wrong in a damaged file: it only sizes the first reserve.
    if (ok && info.frames > 0)
        mono.reserve(std::size_t(std::min<sf_count_t>(info.frames, sf_count_t(1) << 26)));
    std::vector<float> block(std::size_t(std::max(channels, 1)) * 4096);
    while (ok) {
        const sf_count_t got = sf_readf_float(handle, block.data(), 4096);
        if (got <= 0)
            break;
        for (sf_count_t i = 0; i < got; ++i) {
            float sum = 0;
            for (int c = 0; c < channels; ++c)
                sum += block[std::size_t(i * channels + c)];
            mono.push_back(sum / float(channels));
        }
    }
    sf_close(handle);
    return ok && !mono.empty();
}

std::int16_t toSample(float value) {
    if (!std::isfinite(value))
        return 0;
    const float scaled = std::round(value * 32768.0f);
    return std::int16_t(std::clamp(scaled, -32768.0f, 32767.0f));
}

bool resampleTo8k(const std::vector<float>& mono, int rate, std::vector<std::int16_t>& out) {
    if (rate == kRate) {
        out.resize(mono.size());
        std::transform(mono.begin(), mono.end(), out.begin(), toSample);
        return true;
    }
    const double ratio = double(kRate) / rate;
    std::vector<float> resampled(std::size_t(std::ceil(double(mono.size()) * ratio)) + 16);
    std::size_t done = 0;
    const soxr_quality_spec_t quality = soxr_quality_spec(SOXR_HQ, 0);
    const soxr_error_t error =
        soxr_oneshot(rate, kRate, 1, mono.data(), mono.size(), nullptr, resampled.data(),
                     resampled.size(), &done, nullptr, &quality, nullptr);
    if (error)
        return false;
    out.resize(done);
    std::transform(resampled.begin(), resampled.begin() + std::ptrdiff_t(done), out.begin(),
                   toSample);
    return !out.empty();
}

bool readFile(const QByteArray& path, QByteArray& bytes) {
    QFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::ReadOnly) || file.size() > kMaxInputBytes)
        return false;
    bytes = file.readAll();
    return file.error() == QFileDevice::NoError;
}

bool writeFile(const QByteArray& path, const QByteArray& bytes) {
    QSaveFile file(QFile::decodeName(path));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        return false;
    }
    return file.commit();
}

void putLe(QByteArray& out, std::uint32_t value, int bytes) {
    for (int i = 0; i < bytes; ++i)
        out.append(char((value >> (8 * i)) & 0xFF));
}
} // namespace

int amrModeFromText(const QByteArray& mode) {
    static const char* const names[] = {"MR475", "MR515", "MR59",  "MR67",
                                        "MR74",  "MR795", "MR102", "MR122"};
    for (int i = 0; i < 8; ++i)
        if (mode.trimmed().toUpper() == names[i])
            return i;
    return -1;
}

bool decodeSoundTo8kMono(const QByteArray& sound, std::vector<std::int16_t>& samples) {
    MemoryFile file{&sound};
    SF_VIRTUAL_IO io{memoryLength, memorySeek, memoryRead, memoryWrite, memoryTell};
    SF_INFO info{};
    std::vector<float> mono;
    int rate = 0;
    return readMono(sf_open_virtual(&io, SFM_READ, &info, &file), info, mono, rate) &&
           resampleTo8k(mono, rate, samples);
}

QByteArray encodeAmr(const std::vector<std::int16_t>& samples, int mode) {
    QByteArray out(kMagic, kMagicSize);
    void* encoder = Encoder_Interface_init(0);
    std::array<std::int16_t, kFrameSamples> frame{};
    unsigned char packed[64];
    for (std::size_t at = 0; at < samples.size(); at += kFrameSamples) {
        const std::size_t n = std::min<std::size_t>(kFrameSamples, samples.size() - at);
        frame.fill(0);
        std::copy_n(samples.begin() + std::ptrdiff_t(at), n, frame.begin());
        const int bytes = Encoder_Interface_Encode(encoder, Mode(mode), frame.data(), packed, 0);
        if (bytes > 0)
            out.append(reinterpret_cast<const char*>(packed), bytes);
    }
    Encoder_Interface_exit(encoder);
    return out;
}

bool decodeAmr(const QByteArray& amr, std::vector<std::int16_t>& samples) {
    if (!amr.startsWith(QByteArray(kMagic, kMagicSize)))
        return false;
    void* decoder = Decoder_Interface_init();
    std::array<std::int16_t, kFrameSamples> frame{};
    qsizetype at = kMagicSize;
    bool whole = true;
    while (at < amr.size()) {
        const int type = (std::uint8_t(amr[at]) >> 3) & 0x0F;
        const int bytes = kFrameBytes[std::size_t(type)];
        if (bytes == 0 || at + bytes > amr.size()) {
            whole = false;
            break;
        }
        Decoder_Interface_Decode(
            decoder, reinterpret_cast<const unsigned char*>(amr.constData() + at), frame.data(), 0);
        samples.insert(samples.end(), frame.begin(), frame.end());
        at += bytes;
    }
    Decoder_Interface_exit(decoder);
    return whole;
}

QByteArray wavFile(const std::vector<std::int16_t>& samples, int rate, int channels) {
    const auto dataBytes = std::uint32_t(samples.size() * 2);
    const auto frameBytes = std::uint32_t(2 * channels);
    QByteArray out;
    out.reserve(qsizetype(44 + dataBytes));
    out.append("RIFF");
    putLe(out, 36 + dataBytes, 4);
    out.append("WAVEfmt ");
    putLe(out, 16, 4);
    putLe(out, 1, 2); // PCM
    putLe(out, std::uint32_t(channels), 2);
    putLe(out, std::uint32_t(rate), 4);
    putLe(out, std::uint32_t(rate) * frameBytes, 4);
    putLe(out, frameBytes, 2);
    putLe(out, 16, 2);
    out.append("data");
    putLe(out, dataBytes, 4);
    for (const std::int16_t sample : samples)
        putLe(out, std::uint16_t(sample), 2);
    return out;
}

int wav2amr(const QByteArray& wavPath, const QByteArray& amrPath, const QByteArray& mode) {
    const int amrMode = amrModeFromText(mode);
    if (amrMode < 0)
        return AmrUnknownMode;
    // Read from the file in blocks: a long sound is never held whole at its own rate twice.
    SF_INFO info{};
    std::vector<float> mono;
    int rate = 0;
    std::vector<std::int16_t> samples;
    if (!QFileInfo(QFile::decodeName(wavPath)).isFile() ||
        !readMono(sf_open(wavPath.constData(), SFM_READ, &info), info, mono, rate) ||
        !resampleTo8k(mono, rate, samples))
        return AmrUnreadableInput;
    return writeFile(amrPath, encodeAmr(samples, amrMode)) ? AmrOk : AmrUnwritableOutput;
}

int amr2wav(const QByteArray& amrPath, const QByteArray& wavPath) {
    QByteArray amr;
    if (!readFile(amrPath, amr))
        return AmrUnreadableInput;
    std::vector<std::int16_t> samples;
    if (!decodeAmr(amr, samples))
        return AmrDamagedStream;
    return writeFile(wavPath, wavFile(samples, kRate, 1)) ? AmrOk : AmrUnwritableOutput;
}
