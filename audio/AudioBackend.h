#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <vector>

// The sound devices, through SDL2. Each stream owns one SDL device whose callback runs in SDL's
// own thread; the user-interface thread and that thread share only the atomics of the stream,
// and what the callback reads is changed only while the device is locked or paused. Positions
// are counted in frames handed to (or taken from) the device, never by the clock.

namespace audiobackend {
// Starts SDL's audio part once (without its signal handlers); false when it cannot start.
bool ready();
// Closes SDL's audio part; every stream must be gone.
void shutdown();
int outputDeviceCount();
} // namespace audiobackend

// Makes frames for an output stream from its thread (a synthesiser).
class FrameRenderer {
public:
    virtual ~FrameRenderer() = default;
    // Writes `frames` interleaved 16-bit frames of the stream's format to `out`.
    virtual void render(std::int16_t* out, int frames) = 0;
};

struct OutputSource {
    int samplesPerSec = 0;
    int channels = 0;
    // Either recorded or decoded samples, interleaved...
    std::shared_ptr<const std::vector<std::int16_t>> pcm;
    // ...or a renderer that outlives the stream.
    FrameRenderer* renderer = nullptr;
};

class OutputStream {
public:
    // 0 and the stream, or the service's error when no device plays this format.
    static long open(const OutputSource& source, std::unique_ptr<OutputStream>& stream);
    ~OutputStream();
    OutputStream(const OutputStream&) = delete;
    OutputStream& operator=(const OutputStream&) = delete;

    // Hands frames from `from` up to `to` to the device; `beforeStart` runs while the device's
    // thread is held, to set up a renderer.
    template <typename F> void start(std::int64_t from, std::int64_t to, F&& beforeStart) {
        lock();
        beforeStart();
        prepare(from, to);
        unlock();
        resume();
    }
    void start(std::int64_t from, std::int64_t to) {
        start(from, to, [] {});
    }
    // Stops handing frames; the position stays where it is.
    void pause();
    // True while frames are being handed out; false once the end has been reached.
    bool running() const { return mRunning.load(std::memory_order_acquire); }
    std::int64_t position() const { return mFrame.load(std::memory_order_acquire); }
    // Volume of each side, 0 to 1000.
    void setGains(int left, int right);
    // steady_clock nanoseconds at which the callback handed the first frames after the last
    // start, 0 until it has.
    std::int64_t firstFrameTime() const { return mFirstFrameTime.load(); }
    // The steady_clock nanoseconds of now, on the clock of firstFrameTime().
    static std::int64_t now();

private:
    OutputStream() = default;
    static void callback(void* self, std::uint8_t* stream, int length);
    void fill(std::int16_t* out, int frames);
    void prepare(std::int64_t from, std::int64_t to);
    void lock();
    void unlock();
    void resume();

    std::uint32_t mDevice = 0;
    OutputSource mSource;
    std::atomic<std::int64_t> mFrame{0};
    std::atomic<std::int64_t> mEnd{0};
    std::atomic<bool> mRunning{false};
    std::atomic<int> mLeft{1000};
    std::atomic<int> mRight{1000};
    std::atomic<std::int64_t> mFirstFrameTime{0};
};

class InputStream {
public:
    // 0 and the stream, or the service's error when no device records this format. It keeps
    // room for `capacity` frames and stops by itself when they are full.
    static long open(int samplesPerSec, int channels, std::int64_t capacity,
                     std::unique_ptr<InputStream>& stream);
    ~InputStream();
    InputStream(const InputStream&) = delete;
    InputStream& operator=(const InputStream&) = delete;

    void start();
    void pause();
    bool running() const { return mRunning.load(std::memory_order_acquire); }
    // The frames taken so far.
    std::int64_t frames() const { return mFrames.load(std::memory_order_acquire); }
    // The samples taken; read them only after pause() or once running() is false.
    const std::int16_t* samples() const { return mBuffer.get(); }

private:
    InputStream() = default;
    static void callback(void* self, std::uint8_t* stream, int length);

    std::uint32_t mDevice = 0;
    int mChannels = 1;
    std::int64_t mCapacity = 0;
    std::unique_ptr<std::int16_t[]> mBuffer;
    std::atomic<std::int64_t> mFrames{0};
    std::atomic<bool> mRunning{false};
};
