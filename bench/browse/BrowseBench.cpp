// The time from loading a media pane on a folder of 2,000 pictures to its first painted screen:
// the list is read, the tiles in view get their pictures, and the viewport is drawn. The other
// pictures are still waiting for the timer when the clock stops.
#include "bench/support/BenchMain.h"
#include "bench/support/BenchPicture.h"
#include "browse/ctlBrowser.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

constexpr int kPictures = 2000;

bool makeFolder(const QString& folder) {
    const QString first = QDir(folder).filePath(QStringLiteral("p0000.bmp"));
    if (!rampPicture({160, 120}, 0).save(first, "BMP"))
        return false;
    QFile source(first);
    if (!source.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = source.readAll();
    for (int i = 1; i < kPictures; ++i) {
        QFile copy(
            QDir(folder).filePath(QStringLiteral("p%1.bmp").arg(i, 4, 10, QLatin1Char('0'))));
        if (!copy.open(QIODevice::WriteOnly) || copy.write(bytes) != bytes.size())
            return false;
    }
    return true;
}

void FirstScreenOfTwoThousandPictures(benchmark::State& state) {
    QTemporaryDir folder;
    if (!makeFolder(folder.path())) {
        state.SkipWithError("the picture folder could not be made");
        return;
    }
    for (auto _ : state) {
        ctlBrowser browser;
        browser.resize(360, 226);
        browser.setPath(folder.path());
        browser.setFiles(QStringLiteral("*.bmp,*.gif,*.jpg,*.jpeg"));
        browser.setThumbHeight(browser.ThumbWidth() * 3 / 4 + 16);
        browser.LoadFiles();
        QImage screen(browser.tabBack()->size(), QImage::Format_RGB32);
        browser.tabBack()->render(&screen);
        benchmark::DoNotOptimize(screen.constBits());
        if (browser.PendingThumbs() < kPictures - 10) {
            state.SkipWithError("more than the first screen was read");
            return;
        }
    }
}
BENCHMARK(FirstScreenOfTwoThousandPictures)
    ->Unit(benchmark::kMillisecond)
    ->Repetitions(9)
    ->ReportAggregatesOnly(true);

} // namespace

int main(int argc, char** argv) {
    return runWidgetBenchmarks<QApplication>(argc, argv);
}
