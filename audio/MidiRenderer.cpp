#include "audio/MidiRenderer.h"

#include "audio/modMCI.h"

#include <fluidsynth.h>

namespace {

void silenceLibraryLog() {
    static const bool done = [] {
        for (int level : {FLUID_PANIC, FLUID_ERR, FLUID_WARN, FLUID_INFO, FLUID_DBG})
            fluid_set_log_function(level, nullptr, nullptr);
        return true;
    }();
    Q_UNUSED(done);
}

} // namespace

long MidiRenderer::make(const QByteArray& smf, std::unique_ptr<MidiRenderer>& renderer) {
    silenceLibraryLog();
    renderer.reset();
    std::unique_ptr<MidiRenderer> made(new MidiRenderer);
    made->mSmf = smf;
    made->mSettings = new_fluid_settings();
    if (!made->mSettings)
        return Mci::SeqNoMidiPresent;
    fluid_settings_setnum(made->mSettings, "synth.sample-rate", kSamplesPerSec);
    // The player keeps time by the frames rendered, in the stream's thread.
    fluid_settings_setstr(made->mSettings, "player.timing-source", "sample");
    fluid_settings_setint(made->mSettings, "synth.lock-memory", 0);
    // The library's default gain is too quiet for a preview.
    fluid_settings_setnum(made->mSettings, "synth.gain", 0.6);
    made->mSynth = new_fluid_synth(made->mSettings);
    if (!made->mSynth)
        return Mci::SeqNoMidiPresent;
    char* soundfont = nullptr;
    if (fluid_settings_dupstr(made->mSettings, "synth.default-soundfont", &soundfont) != FLUID_OK ||
        !soundfont)
        return Mci::SeqNoMidiPresent;
    const int loaded = fluid_synth_sfload(made->mSynth, soundfont, 1);
    fluid_free(soundfont);
    if (loaded == FLUID_FAILED)
        return Mci::SeqNoMidiPresent;
    renderer = std::move(made);
    return Mci::NoError;
}

MidiRenderer::~MidiRenderer() {
    dropPlayer();
    if (mSynth)
        delete_fluid_synth(mSynth);
    if (mSettings)
        delete_fluid_settings(mSettings);
}

void MidiRenderer::dropPlayer() {
    if (!mPlayer)
        return;
    fluid_player_stop(mPlayer);
    delete_fluid_player(mPlayer);
    mPlayer = nullptr;
}

bool MidiRenderer::cue(std::int64_t tick) {
    dropPlayer();
    fluid_synth_system_reset(mSynth);
    mPlayer = new_fluid_player(mSynth);
    if (!mPlayer)
        return false;
    if (fluid_player_add_mem(mPlayer, mSmf.constData(), std::size_t(mSmf.size())) != FLUID_OK) {
        dropPlayer();
        return false;
    }
    if (tick > 0)
        fluid_player_seek(mPlayer, int(tick));
    return fluid_player_play(mPlayer) == FLUID_OK;
}

void MidiRenderer::render(std::int16_t* out, int frames) {
    fluid_synth_write_s16(mSynth, frames, out, 0, 2, out, 1, 2);
}
