// The size estimate of a 20-slide message (a picture, a text and a 10 s WAV on every slide):
// with an empty cache, with everything measured before, and after one slide picture changed
// (what the main window pays for a change on the canvas).
// Run from the build tree: bin/size_estimate_bench --benchmark_repetitions=5
// --benchmark_report_aggregates_only=true (the medians are the figures to read).
#include "bench/support/BenchMain.h"
#include "bench/support/BenchMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"
#include "store/modSizeEstimate.h"

#include <QCoreApplication>
#include <QImage>
#include <benchmark/benchmark.h>

namespace {

// The message in memory, with the settings that point at its folder.
struct Fixture : SoundSlidesMessage {
    PublishSettings settings;
    Fixture() { settings.messageFolder = folder(); }
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
    return runBenchmarks<QCoreApplication>(argc, argv);
}
