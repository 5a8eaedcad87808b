#pragma once

#include "audio/AudioBackend.h"

#include <QByteArray>
#include <cstdint>
#include <memory>

struct _fluid_hashtable_t;
struct _fluid_synth_t;
struct _fluid_player_t;

// Renders a MIDI file with FluidSynth and the General MIDI soundfont FluidSynth names as its
// default, in 16-bit stereo, from the output stream's thread (the player's clock is the number
// of frames rendered).
class MidiRenderer : public FrameRenderer {
public:
    static constexpr int kSamplesPerSec = 44100;
    static constexpr int kChannels = 2;

    // 0 and the renderer, or SeqNoMidiPresent when no synthesiser or soundfont can be had.
    static long make(const QByteArray& smf, std::unique_ptr<MidiRenderer>& renderer);
    ~MidiRenderer() override;
    MidiRenderer(const MidiRenderer&) = delete;
    MidiRenderer& operator=(const MidiRenderer&) = delete;

    // A fresh player from `tick`, silencing what sounded; call it while the stream is held.
    bool cue(std::int64_t tick);
    void render(std::int16_t* out, int frames) override;

private:
    MidiRenderer() = default;
    void dropPlayer();

    QByteArray mSmf;
    _fluid_hashtable_t* mSettings = nullptr;
    _fluid_synth_t* mSynth = nullptr;
    _fluid_player_t* mPlayer = nullptr;
};
