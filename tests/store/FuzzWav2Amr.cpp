// Fuzz target: any bytes as the sound wav2amr reads. Reading either gives samples that encode
// to whole frames, or refuses; nothing crashes.
#include "PublishSupport.h"

#include "store/AMRConverter.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

std::vector<QByteArray> fuzzSeeds() {
    return {sineWav(8000, 1, 60), sineWav(44100, 2, 30), sineWav(22050, 3, 25)};
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QByteArray sound(reinterpret_cast<const char*>(data), qsizetype(size));
    std::vector<std::int16_t> samples;
    if (!decodeSoundTo8kMono(sound, samples))
        return 0;
    const QByteArray amr = encodeAmr(samples, 6);
    if ((amr.size() - 6) % 27 != 0 || samples.empty())
        std::abort();
    std::vector<std::int16_t> decoded;
    if (!decodeAmr(amr, decoded) || decoded.size() < samples.size())
        std::abort();
    return 0;
}
