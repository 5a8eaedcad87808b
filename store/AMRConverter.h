#pragma once

#include <QByteArray>
#include <cstdint>
#include <vector>

// WAV to AMR-NB and back, in the AMR storage format ("#!AMR\n", then one frame per 20 ms).
// A sound of any rate and number of channels is mixed down to one channel and resampled to
// 8 kHz before it is encoded.

// What a conversion gave: 0 success, otherwise what went wrong.
enum AmrResult : int {
    AmrOk = 0,
    AmrUnreadableInput = 1, // the input is missing, no sound of a known kind, or holds no sound
    AmrUnwritableOutput = 2,
    AmrUnknownMode = 3,   // the mode text names no AMR-NB mode
    AmrDamagedStream = 4, // the AMR input is not a whole AMR-NB stream
};

// Encodes the sound file at `wavPath` to `amrPath` at `mode` ("MR475" ... "MR122"; "MR102" is
// 10.2 kbit/s). Any sound file libsndfile reads serves. The output is written whole or not at
// all.
int wav2amr(const QByteArray& wavPath, const QByteArray& amrPath, const QByteArray& mode);
// Decodes the AMR file at `amrPath` into a 16-bit 8 kHz mono WAV at `wavPath`.
int amr2wav(const QByteArray& amrPath, const QByteArray& wavPath);

// The steps behind the two, on bytes in memory.
// The sound file in `sound` as 8 kHz mono samples; false when it holds no readable sound.
bool decodeSoundTo8kMono(const QByteArray& sound, std::vector<std::int16_t>& samples);
// `samples` (8 kHz mono) as an AMR file; the last frame is filled up with silence.
QByteArray encodeAmr(const std::vector<std::int16_t>& samples, int mode);
// The AMR file in `amr` as 8 kHz mono samples; false when it is not a whole AMR-NB stream.
bool decodeAmr(const QByteArray& amr, std::vector<std::int16_t>& samples);
// Interleaved 16-bit `samples` as a WAV file.
QByteArray wavFile(const std::vector<std::int16_t>& samples, int rate, int channels);
// The encoder's mode for a mode text, or -1.
int amrModeFromText(const QByteArray& mode);
