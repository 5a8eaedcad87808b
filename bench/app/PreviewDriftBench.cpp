// How late the preview's slides start when its 50 ms timer really runs: a show of 20 slides of
// 300 to 1000 ms (15 s) on the millisecond timer, each slide's start measured on the clock
// against the time its duration gives it. Counters: the median and the largest lateness of a
// slide start in ms, and the lateness of the last one (the drift over the whole show).
#include "app/clsPreviewTiming.h"
#include "audio/mmstimer.h"
#include "bench/support/BenchMain.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <algorithm>
#include <benchmark/benchmark.h>
#include <vector>

namespace {

constexpr int kSlides = 20;

std::int32_t durationOf(int slide) {
    return 300 + (slide * 137) % 700;
}

// The lateness of each slide start in ms.
std::vector<double> runShow() {
    clsPreviewTiming timing;
    mmstimer timer;
    timer.setInterval(clsPreviewTiming::kTick);
    QEventLoop loop;
    QElapsedTimer clock;
    std::vector<double> lateness;
    std::int64_t due = clsPreviewTiming::kTick; // slide 1 is loaded by the first step
    QObject::connect(&timer, &mmstimer::Timer, [&](qint64) {
        for (int steps = timing.StepsDue(clock.elapsed()); steps > 0; --steps) {
            const clsPreviewTiming::Step step = timing.Tick(kSlides);
            if (step == clsPreviewTiming::Step::Nothing)
                continue;
            lateness.push_back(double(clock.elapsed() - due));
            if (step != clsPreviewTiming::Step::PlaySlide) {
                timer.setEnabled(false);
                loop.quit();
                return;
            }
            const std::int32_t duration = durationOf(timing.PlaySlide());
            timing.SlideStarted(duration);
            due += std::int64_t(duration / clsPreviewTiming::kTick + 1) * clsPreviewTiming::kTick;
        }
    });
    timing.Start(false, 0);
    clock.start();
    timer.setEnabled(true);
    loop.exec();
    return lateness;
}

void PreviewDriftOverTwentySlides(benchmark::State& state) {
    std::vector<double> lateness;
    for (auto _ : state)
        lateness = runShow();
    if (lateness.size() != kSlides + 1) {
        state.SkipWithError("the show did not run through its slides");
        return;
    }
    const double last = lateness.back();
    std::sort(lateness.begin(), lateness.end());
    state.counters["median_late_ms"] = lateness[lateness.size() / 2];
    state.counters["max_late_ms"] = lateness.back();
    state.counters["end_drift_ms"] = last;
}
BENCHMARK(PreviewDriftOverTwentySlides)->Unit(benchmark::kSecond)->Iterations(1)->Repetitions(3);

} // namespace

int main(int argc, char** argv) {
    return runBenchmarks<QCoreApplication>(argc, argv);
}
