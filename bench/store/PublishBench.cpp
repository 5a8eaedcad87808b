// Publishing a 20-slide message with a 10 s WAV (44.1 kHz stereo) on every slide, as a whole and
// by its three costly parts: the pictures (JPEG), the sounds (WAV to AMR) and the template (tar).
// Run from the build tree: bin/publish_bench --benchmark_repetitions=5
// --benchmark_report_aggregates_only=true (the medians are the figures to read).
#include "config/modConfig.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "imaging/DIWriteJpg.h"
#include "store/AMRConverter.h"
#include "store/clsMMSManager.h"
#include "store/modTar.h"

#include <QCoreApplication>
#include <QDir>
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
            samples.push_back(
                std::int16_t(8000 * std::sin(2 * M_PI * (440.0 + 110 * c) * i / rate)));
    return wavFile(samples, rate, channels);
}

// A stored message of kSlides slides with a picture, a text and a 10 s sound each.
struct Fixture {
    QTemporaryDir dir;
    clsMMSManager manager;
    std::shared_ptr<clsMessage> message;
    Fixture() {
        manager.Initialize(dir.path() + QStringLiteral("/Messages/"),
                           QStringLiteral("message.xml"));
        manager.ClearTemplateFileType(2); // makesis is a companion program of its own
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
        message->SaveMessage();
    }
    QString folder() const { return dir.path() + QStringLiteral("/Messages/Bench/"); }
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
            DIWriteJpg(QFile::encodeName(f.dir.path() + QStringLiteral("/p.jpg")),
                       QFile::encodeName(f.folder() + QStringLiteral("Slide_%1.bmp").arg(i)), 90,
                       0);
}
BENCHMARK(BM_Pictures20)->Unit(benchmark::kMillisecond);

void BM_Amr20(benchmark::State& state) {
    Fixture& f = fixture();
    for (auto _ : state)
        for (int i = 1; i <= kSlides; ++i)
            wav2amr(QFile::encodeName(f.dir.path() + QStringLiteral("/sound%1.wav").arg(i)),
                    QFile::encodeName(f.dir.path() + QStringLiteral("/s.amr")), "MR102");
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
        writeTarArchive(f.dir.path() + QStringLiteral("/b.tpl"), files, true, problem);
    }
}
BENCHMARK(BM_Pack20)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
