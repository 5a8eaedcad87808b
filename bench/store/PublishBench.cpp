// Publishing a 20-slide message with a 10 s WAV (44.1 kHz stereo) on every slide, as a whole and
// by its three costly parts: the pictures (JPEG), the sounds (WAV to AMR) and the template (tar).
// Run from the build tree: bin/publish_bench --benchmark_repetitions=5
// --benchmark_report_aggregates_only=true (the medians are the figures to read).
#include "bench/support/BenchMain.h"
#include "bench/support/BenchMessage.h"
#include "config/modConfig.h"
#include "imaging/DIWriteJpg.h"
#include "store/AMRConverter.h"
#include "store/modTar.h"

#include <QCoreApplication>
#include <QFile>
#include <benchmark/benchmark.h>

namespace {
constexpr int kSlides = SoundSlidesMessage::kSlides;

// The message stored, as publishing reads it from its folder.
struct Fixture : SoundSlidesMessage {
    Fixture() {
        manager.ClearTemplateFileType(2); // makesis is a companion program of its own
        message->SaveMessage();
    }
};

Fixture& fixture() {
    static Fixture f;
    return f;
}

void BM_Publish20(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        if (f.manager.SaveAsMMS(*f.message, true, 0) != 0)
            state.SkipWithError(f.manager.GetSaveAsMMSStatus().toUtf8().constData());
}
BENCHMARK(BM_Publish20)->Unit(benchmark::kMillisecond);

void BM_Pictures20(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        for (int i = 1; i <= kSlides; ++i)
            DIWriteJpg(QFile::encodeName(f.scratch(QStringLiteral("p.jpg"))),
                       QFile::encodeName(f.folder() + QStringLiteral("Slide_%1.bmp").arg(i)), 90,
                       0);
}
BENCHMARK(BM_Pictures20)->Unit(benchmark::kMillisecond);

void BM_Amr20(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        for (int i = 1; i <= kSlides; ++i)
            wav2amr(QFile::encodeName(f.scratch(QStringLiteral("sound%1.wav").arg(i))),
                    QFile::encodeName(f.scratch(QStringLiteral("s.amr"))), "MR102");
}
BENCHMARK(BM_Amr20)->Unit(benchmark::kMillisecond);

void BM_Pack20(benchmark::State& state) {
    Fixture& f = fixture();
    f.manager.SaveAsMMS(*f.message, true, 0);
    QStringList files;
    const QStringList list = f.manager.fileList().split(QLatin1Char(';'));
    for (const QString& name : list)
        if (!name.endsWith(QLatin1String(".txt")))
            files << f.folder() + QStringLiteral("mms/") + name;
    for (auto _ : state) {
        QString problem;
        writeTarArchive(f.scratch(QStringLiteral("b.tpl")), files, true, problem);
    }
}
BENCHMARK(BM_Pack20)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv) {
    return runBenchmarks<QCoreApplication>(argc, argv);
}
