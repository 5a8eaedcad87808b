// The cost of flattening a slide: RenderImage of a surface with a stretched background and
// twenty objects (pictures and texts), as every change of the canvas renders the preview.
#include "bench/support/BenchMain.h"
#include "bench/support/BenchPicture.h"
#include "canvas/ctlPictureEditor.h"

#include <QApplication>
#include <QDir>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

void RenderSlideOfTwentyObjects(benchmark::State& state) {
    QTemporaryDir folder;
    ctlPictureEditor editor;
    editor.resize(160, 120);
    const QString back = QDir(folder.path()).filePath(QStringLiteral("back.bmp"));
    rampPicture({640, 480}, 1).save(back, "BMP");
    editor.AddBackgroundImage(back);
    for (int i = 0; i < 10; ++i) {
        const QString file = QDir(folder.path()).filePath(QStringLiteral("p%1.bmp").arg(i));
        rampPicture({24 + 4 * i, 18 + 3 * i}, i).save(file, "BMP");
        editor.AddImage(file, QStringLiteral("p"));
        editor.selected()->move(i * 13, i * 9);
        editor.AddText(TextAttributes{QStringLiteral("Text %1").arg(i),
                                      QStringLiteral("DejaVu Sans"), std::int16_t(10 + i),
                                      0x0000FF * (i % 2), i % 2 == 0, i % 3 == 0});
        editor.selected()->move(150 - i * 14, i * 11);
    }
    if (editor.imageCount() + editor.textCount() != 20) {
        state.SkipWithError("the slide did not get its twenty objects");
        return;
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(editor.RenderImage(QSize(160, 120), true));
}
BENCHMARK(RenderSlideOfTwentyObjects)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    return runWidgetBenchmarks<QApplication>(argc, argv);
}
