#include "bench/support/BenchMessage.h"

#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "store/AMRConverter.h"

#include <QFile>
#include <QImage>
#include <cmath>
#include <vector>

namespace {

// `ms` milliseconds of a sine, 440 Hz on the first channel and 110 Hz higher on each next one.
QByteArray sineWav(int rate, int channels, int ms) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < int(std::int64_t(rate) * ms / 1000); ++i)
        for (int c = 0; c < channels; ++c)
            samples.push_back(
                std::int16_t(8000 * std::sin(2 * M_PI * (440.0 + 110 * c) * i / rate)));
    return wavFile(samples, rate, channels);
}

QImage slidePicture(int slide) {
    QImage picture(160, 120, QImage::Format_RGB32);
    for (int y = 0; y < 120; ++y)
        for (int x = 0; x < 160; ++x)
            picture.setPixel(x, y, qRgb((x * slide) & 255, (y * 3) & 255, (x + y) & 255));
    return picture;
}

} // namespace

SoundSlidesMessage::SoundSlidesMessage() {
    manager.Initialize(dir.path() + QStringLiteral("/Messages/"), QStringLiteral("message.xml"));
    const QByteArray wav = sineWav(44100, 2, 10000);
    message = manager.CreateMsg(QStringLiteral("Bench"));
    for (int i = 1; i <= kSlides; ++i) {
        const QString sound = scratch(QStringLiteral("sound%1.wav").arg(i));
        QFile file(sound);
        if (file.open(QIODevice::WriteOnly))
            file.write(wav);
        auto slide = message->Slides()->Add();
        slide->setImage(slidePicture(i));
        slide->setText(QStringLiteral("Slide %1").arg(i));
        slide->setSound(sound);
    }
}

QString SoundSlidesMessage::scratch(const QString& name) const {
    return dir.path() + QLatin1Char('/') + name;
}

QString SoundSlidesMessage::folder() const {
    return dir.path() + QStringLiteral("/Messages/Bench/");
}
