// The size estimate of a 20-slide message (a picture, a text and a 10 s WAV on every slide):
// with an empty cache, with everything measured before, and after one slide picture changed
// (what the main window pays for a change on the canvas).
// Run from the build tree: bin/size_estimate_bench --benchmark_repetitions=5
// --benchmark_report_aggregates_only=true (the medians are the figures to read).
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "store/AMRConverter.h"
#include "store/clsMMSManager.h"
#include "store/modSizeEstimate.h"

#include <QCoreApplication>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cmath>

namespace {
constexpr int kSlides = 20;

QByteArray sineWav(int rate, int channels, int ms) {
    std::vector<std::int16_t> samples;
    for (int i = 0; i < int(std::int64_t(rate) * ms / 1000); ++i)
        for (int c = 0; c < channels; ++c)
            samples.push_back(std::int16_t(8000 * std::sin(2 * M_PI * 440.0 * i / rate)));
    return wavFile(samples, rate, channels);
}

// A message of kSlides slides in memory; its sounds lie in a scratch folder.
struct Fixture {
    QTemporaryDir dir;
    clsMMSManager manager;
    std::shared_ptr<clsMessage> message;
    PublishSettings settings;
    Fixture() {
        manager.Initialize(dir.path() + QStringLiteral("/Messages/"),
                           QStringLiteral("message.xml"));
        const QByteArray wav = sineWav(44100, 2, 10000);
        message = manager.CreateMsg(QStringLiteral("Bench"));
        for (int i = 1; i <= kSlides; ++i) {
            const QString sound = dir.path() + QStringLiteral("/sound%1.wav").arg(i);
            QFile file(sound);
            if (file.open(QIODevice::WriteOnly))
                file.write(wav);
            auto slide = message->Slides()->Add();
            QImage picture(160, 120, QImage::Format_RGB32);
            for (int y = 0; y < 120; ++y)
                for (int x = 0; x < 160; ++x)
                    picture.setPixel(x, y, qRgb((x * i) & 255, (y * 3) & 255, (x + y) & 255));
            slide->setImage(picture);
            slide->setText(QStringLiteral("Slide %1").arg(i));
            slide->setSound(sound);
        }
        settings.messageFolder = dir.path() + QStringLiteral("/Messages/Bench/");
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_EstimateCold20(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state) {
        clsSizeEstimator estimator;
        benchmark::DoNotOptimize(estimator.Estimate(*f.message, f.settings).total());
    }
}
BENCHMARK(BM_EstimateCold20)->Unit(benchmark::kMillisecond);

void BM_EstimateWarm20(benchmark::State& state) {
    Fixture& f = fixture();
    clsSizeEstimator estimator;
    estimator.Estimate(*f.message, f.settings);
    for (auto _ : state)
        benchmark::DoNotOptimize(estimator.Estimate(*f.message, f.settings).total());
}
BENCHMARK(BM_EstimateWarm20)->Unit(benchmark::kMillisecond);

void BM_EstimateOneSlideChanged20(benchmark::State& state) {
    Fixture& f = fixture();
    clsSizeEstimator estimator;
    estimator.Estimate(*f.message, f.settings);
    clsSlide& slide = *f.message->Slides()->Item(1);
    QImage picture = slide.Image();
    int stroke = 0;
    for (auto _ : state) {
        state.PauseTiming();
        picture.setPixel(stroke % 160, (stroke / 160) % 120, qRgb(stroke & 255, 0, 0));
        ++stroke;
        slide.setImage(picture);
        state.ResumeTiming();
        benchmark::DoNotOptimize(estimator.Estimate(*f.message, f.settings).total());
    }
}
BENCHMARK(BM_EstimateOneSlideChanged20)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
