// The cost of rebuilding the slide strip: DrawThumbs of a message of 200 slides, each with a
// picture of its own, half of them with a sound, as every change of the slides' order or count
// draws the strip anew.
#include "bench/support/BenchMain.h"
#include "browse/ctlSlideThumbs.h"
#include "document/clsMessage.h"
#include "document/clsSlide.h"
#include "document/clsSlides.h"

#include <QApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

void DrawThumbsOfTwoHundredSlides(benchmark::State& state) {
    QTemporaryDir folder;
    clsMessage message;
    message.Initialize(folder.path() + QStringLiteral("/"), QStringLiteral("message.xml"),
                       QStringLiteral("Bench"));
    for (int i = 0; i < 200; ++i) {
        auto slide = message.Slides()->Add();
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv((i * 7) % 360, 160, 220));
        slide->setImage(picture);
        if (i % 2 == 0)
            slide->setSound(QStringLiteral("/sounds/tune.wav"));
    }
    ctlSlideThumbs strip;
    strip.resize(452, 112);
    for (auto _ : state) {
        strip.DrawThumbs(message);
        benchmark::DoNotOptimize(strip.TileCount());
    }
    if (strip.TileCount() != 200)
        state.SkipWithError("the strip did not get its 200 tiles");
}
BENCHMARK(DrawThumbsOfTwoHundredSlides)->Unit(benchmark::kMillisecond)->Repetitions(5);

} // namespace

int main(int argc, char** argv) {
    return runWidgetBenchmarks<QApplication>(argc, argv);
}
