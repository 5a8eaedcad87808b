#include "audio/AudioBackend.h"

#include "audio/modMCI.h"

#include <SDL.h>
#include <algorithm>
#include <chrono>
#include <cstring>

namespace {

enum class BackendState { Unknown, Ready, Failed };
BackendState gState = BackendState::Unknown;

// About 20 ms per callback, as a power of two.
Uint16 bufferFramesFor(int samplesPerSec) {
    Uint16 frames = 256;
    while (frames < 4096 && frames < samplesPerSec / 50)
        frames = Uint16(frames * 2);
    return frames;
}

// Opens the default output (or, with `capture`, input) device for 16-bit samples that
// `callback` fills or takes on the audio thread; 0 when none opens.
SDL_AudioDeviceID openDevice(int samplesPerSec, int channels, bool capture,
                             SDL_AudioCallback callback, void* owner) {
    SDL_AudioSpec wanted{};
    wanted.freq = samplesPerSec;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = Uint8(channels);
    wanted.samples = bufferFramesFor(samplesPerSec);
    wanted.callback = callback;
    wanted.userdata = owner;
    SDL_AudioSpec obtained{};
    return SDL_OpenAudioDevice(nullptr, capture ? 1 : 0, &wanted, &obtained, 0);
}

bool channelsPlayable(int channels) {
    return channels == 1 || channels == 2 || channels == 4 || channels == 6 || channels == 8;
}

} // namespace

namespace audiobackend {

bool ready() {
    if (gState == BackendState::Unknown) {
        // SDL would otherwise take SIGINT and SIGTERM from the program.
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        gState =
            SDL_InitSubSystem(SDL_INIT_AUDIO) == 0 ? BackendState::Ready : BackendState::Failed;
    }
    return gState == BackendState::Ready;
}

void shutdown() {
    if (gState == BackendState::Ready)
        SDL_QuitSubSystem(SDL_INIT_AUDIO);
    gState = BackendState::Unknown;
}

int outputDeviceCount() {
    if (!ready())
        return 0;
    const int count = SDL_GetNumAudioDevices(0);
    // -1: the driver cannot list its devices but has a default one.
    return count < 0 ? 1 : count;
}

} // namespace audiobackend

// ---- Output

long OutputStream::open(const OutputSource& source, std::unique_ptr<OutputStream>& stream) {
    stream.reset();
    if (!audiobackend::ready())
        return Mci::WaveOutputsUnsuitable;
    if (source.samplesPerSec <= 0 || source.samplesPerSec > 384000 ||
        !channelsPlayable(source.channels))
        return Mci::WaveOutputsUnsuitable;
    std::unique_ptr<OutputStream> made(new OutputStream);
    made->mSource = source;
    made->mDevice = openDevice(source.samplesPerSec, source.channels, false,
                               &OutputStream::callback, made.get());
    if (made->mDevice == 0)
        return Mci::WaveOutputsUnsuitable;
    stream = std::move(made);
    return Mci::NoError;
}

OutputStream::~OutputStream() {
    if (mDevice)
        SDL_CloseAudioDevice(mDevice); // waits for the callback to return
}

std::int64_t OutputStream::now() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void OutputStream::start(std::int64_t from, std::int64_t to) {
    SDL_LockAudioDevice(mDevice);
    mFrame.store(from);
    mEnd.store(std::max(from, to));
    mFirstFrameTime.store(0);
    mRunning.store(to > from, std::memory_order_release);
    SDL_UnlockAudioDevice(mDevice);
    SDL_PauseAudioDevice(mDevice, 0);
}

void OutputStream::pause() {
    SDL_PauseAudioDevice(mDevice, 1); // returns once the callback is out
    mRunning.store(false, std::memory_order_release);
}

void OutputStream::setGains(int left, int right) {
    mLeft.store(std::clamp(left, 0, 1000));
    mRight.store(std::clamp(right, 0, 1000));
}

void OutputStream::callback(void* self, std::uint8_t* stream, int length) {
    auto* output = static_cast<OutputStream*>(self);
    const int frameBytes = int(sizeof(std::int16_t)) * output->mSource.channels;
    std::memset(stream, 0, std::size_t(length));
    output->fill(reinterpret_cast<std::int16_t*>(stream), length / frameBytes);
}

void OutputStream::fill(std::int16_t* out, int frames) {
    if (!mRunning.load(std::memory_order_acquire))
        return;
    const std::int64_t at = mFrame.load();
    const int count = int(std::min<std::int64_t>(frames, mEnd.load() - at));
    const int channels = mSource.channels;
    if (count > 0) {
        if (mSource.renderer) {
            mSource.renderer->render(out, count);
        } else if (mSource.pcm) {
            const std::int64_t available = std::int64_t(mSource.pcm->size()) / channels - at;
            const int copied = int(std::clamp<std::int64_t>(available, 0, count));
            std::memcpy(out, mSource.pcm->data() + at * channels,
                        std::size_t(copied) * std::size_t(channels) * sizeof(std::int16_t));
        }
        const int left = mLeft.load();
        const int right = mRight.load();
        if (left != 1000 || right != 1000) {
            for (int i = 0; i < count * channels; ++i) {
                const int gain = channels == 1             ? std::max(left, right)
                                 : (i % channels) % 2 == 0 ? left
                                                           : right;
                out[i] = std::int16_t(out[i] * gain / 1000);
            }
        }
        if (mFirstFrameTime.load() == 0)
            mFirstFrameTime.store(now());
    }
    const std::int64_t next = at + std::max(count, 0);
    mFrame.store(next, std::memory_order_release);
    if (next >= mEnd.load())
        mRunning.store(false, std::memory_order_release);
}

// ---- Input

long InputStream::open(int samplesPerSec, int channels, std::int64_t capacity,
                       std::unique_ptr<InputStream>& stream) {
    stream.reset();
    if (!audiobackend::ready() || samplesPerSec <= 0 || samplesPerSec > 384000 ||
        !channelsPlayable(channels) || capacity <= 0)
        return Mci::WaveInputsUnsuitable;
    std::unique_ptr<InputStream> made(new InputStream);
    made->mChannels = channels;
    made->mCapacity = capacity;
    // Left uninitialised: the pages are only taken as the recording fills them.
    made->mBuffer.reset(new (std::nothrow) std::int16_t[std::size_t(capacity * channels)]);
    if (!made->mBuffer)
        return Mci::OutOfMemory;
    made->mDevice = openDevice(samplesPerSec, channels, true, &InputStream::callback, made.get());
    if (made->mDevice == 0)
        return Mci::WaveInputsUnsuitable;
    stream = std::move(made);
    return Mci::NoError;
}

InputStream::~InputStream() {
    if (mDevice)
        SDL_CloseAudioDevice(mDevice);
}

void InputStream::start() {
    mRunning.store(mFrames.load() < mCapacity, std::memory_order_release);
    SDL_PauseAudioDevice(mDevice, 0);
}

void InputStream::pause() {
    SDL_PauseAudioDevice(mDevice, 1);
    mRunning.store(false, std::memory_order_release);
}

void InputStream::callback(void* self, std::uint8_t* stream, int length) {
    auto* input = static_cast<InputStream*>(self);
    if (!input->mRunning.load(std::memory_order_acquire))
        return;
    const int frameBytes = int(sizeof(std::int16_t)) * input->mChannels;
    const std::int64_t at = input->mFrames.load();
    const std::int64_t count = std::min<std::int64_t>(length / frameBytes, input->mCapacity - at);
    std::memcpy(input->mBuffer.get() + at * input->mChannels, stream,
                std::size_t(count * frameBytes));
    input->mFrames.store(at + count, std::memory_order_release);
    if (at + count >= input->mCapacity)
        input->mRunning.store(false, std::memory_order_release);
}
