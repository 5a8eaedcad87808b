#pragma once

#include <QString>
#include <cstdint>
#include <vector>

// Sampled sound files through libsndfile: WAV, AU, AIFF and what else the library reads.

struct SoundFormat {
    int samplesPerSec = 0;
    int channels = 0;
    int bitsPerSample = 0; // as stored in the file (8, 16, 24, 32; 4 for ADPCM)
};

// Reads the header: 0, or FileNotFound, or InvalidFile when the library cannot read it.
long probeSoundFile(const QString& path, SoundFormat& format, std::int64_t& frames);

// Decodes the whole file into interleaved 16-bit samples; a file cut short gives what it holds.
long decodeSoundFile(const QString& path, SoundFormat& format, std::vector<std::int16_t>& pcm);

// Writes a PCM WAV file of `frames` interleaved 16-bit frames, stored with the format's bits
// per sample (8 or 16). The file is written beside and then put in place whole.
long writeWaveFile(const QString& path, const SoundFormat& format, const std::int16_t* samples,
                   std::int64_t frames);
