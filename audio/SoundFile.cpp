#include "audio/SoundFile.h"

#include "audio/modMCI.h"

#include <QFile>
#include <QFileInfo>
#include <cstdio>
#include <memory>
#include <sndfile.h>

namespace {

struct SndfileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SndfileHandle = std::unique_ptr<SNDFILE, SndfileCloser>;

int bitsOf(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return 8;
    case SF_FORMAT_PCM_24:
        return 24;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 32;
    case SF_FORMAT_DOUBLE:
        return 64;
    case SF_FORMAT_IMA_ADPCM:
    case SF_FORMAT_MS_ADPCM:
        return 4;
    default:
        return 16;
    }
}

long openForReading(const QString& path, SF_INFO& info, SndfileHandle& handle) {
    if (!QFileInfo(path).isFile())
        return Mci::FileNotFound;
    info = SF_INFO();
    handle.reset(sf_open(QFile::encodeName(path).constData(), SFM_READ, &info));
    // A header beyond any real sound (a damaged one) is refused before its numbers are used.
    constexpr int kMostChannels = 64;
    constexpr int kHighestRate = 768000;
    if (!handle || info.channels <= 0 || info.channels > kMostChannels || info.samplerate <= 0 ||
        info.samplerate > kHighestRate || info.frames < 0)
        return Mci::InvalidFile;
    return Mci::NoError;
}

} // namespace

long probeSoundFile(const QString& path, SoundFormat& format, std::int64_t& frames) {
    SF_INFO info;
    SndfileHandle handle;
    if (const long error = openForReading(path, info, handle))
        return error;
    format = {info.samplerate, info.channels, bitsOf(info.format)};
    frames = info.frames;
    return Mci::NoError;
}

long decodeSoundFile(const QString& path, SoundFormat& format, std::vector<std::int16_t>& pcm) {
    SF_INFO info;
    SndfileHandle handle;
    if (const long error = openForReading(path, info, handle))
        return error;
    format = {info.samplerate, info.channels, bitsOf(info.format)};
    // Grows by blocks: a damaged header may promise more frames than the file holds.
    constexpr sf_count_t kBlock = 16384;
    pcm.clear();
    sf_count_t total = 0;
    for (;;) {
        pcm.resize(std::size_t((total + kBlock) * info.channels));
        const sf_count_t got =
            sf_readf_short(handle.get(), pcm.data() + total * info.channels, kBlock);
        if (got <= 0)
            break;
        total += got;
    }
    pcm.resize(std::size_t(total * info.channels));
    pcm.shrink_to_fit();
    return Mci::NoError;
}

long writeWaveFile(const QString& path, const SoundFormat& format, const std::int16_t* samples,
                   std::int64_t frames) {
    if (path.isEmpty() || format.channels <= 0 || format.samplesPerSec <= 0)
        return Mci::FileNotSaved;
    const QByteArray target = QFile::encodeName(path);
    const QByteArray part = target + ".part";
    SF_INFO info{};
    info.samplerate = format.samplesPerSec;
    info.channels = format.channels;
    info.format = SF_FORMAT_WAV | (format.bitsPerSample == 8 ? SF_FORMAT_PCM_U8 : SF_FORMAT_PCM_16);
    SndfileHandle handle(sf_open(part.constData(), SFM_WRITE, &info));
    if (!handle)
        return Mci::FileNotSaved;
    const sf_count_t written = sf_writef_short(handle.get(), samples, frames);
    handle.reset();
    if (written != frames || std::rename(part.constData(), target.constData()) != 0) {
        std::remove(part.constData());
        return Mci::FileNotSaved;
    }
    return Mci::NoError;
}
