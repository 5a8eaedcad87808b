// Saving and opening a long message: 200 slides, each with a picture, a text, a sound and two
// draw objects. Run from the build tree: bin/store_bench
#include "bench/support/BenchMain.h"
#include "document/clsMessage.h"
#include "store/clsMMSManager.h"

#include <QCoreApplication>
#include <QImage>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {
constexpr int kSlides = 200;

std::shared_ptr<clsMessage> longMessage(clsMMSManager& manager) {
    auto message = manager.CreateMsg(QStringLiteral("Long"));
    for (int i = 0; i < kSlides; ++i) {
        auto slide = message->Slides()->Add();
        QImage picture(160, 120, QImage::Format_RGB32);
        picture.fill(QColor::fromHsv((i * 7) % 360, 200, 220));
        slide->setImage(picture);
        slide->setText(QStringLiteral("Slide %1\r\nsecond line").arg(i + 1));
        slide->setSound(QStringLiteral("/archive/Sounds/sound%1.wav").arg(i));
        slide->setSoundDuration(2000 + i);
        clsDrawProperties text;
        text.name = QStringLiteral("Text1");
        text.typ = QStringLiteral("text");
        text.w = 120;
        text.h = 20;
        text.Data = QStringLiteral("caption %1").arg(i);
        text.fontName = QStringLiteral("DejaVu Sans");
        text.fontSize = 10;
        slide->DrawObjects()->Add(text);
        clsDrawProperties image;
        image.name = QStringLiteral("Image1");
        image.typ = QStringLiteral("image");
        image.w = 32;
        image.h = 32;
        image.Data = QStringLiteral("/archive/Pictures/star.gif");
        slide->DrawObjects()->Add(image);
    }
    return message;
}

void BM_SaveMessage200(benchmark::State& state) {
    QTemporaryDir dir;
    clsMMSManager manager;
    manager.Initialize(dir.path() + QStringLiteral("/Messages/"), QStringLiteral("message.xml"));
    auto message = longMessage(manager);
    for (auto _ : state) {
        if (!message->SaveMessage())
            state.SkipWithError("save failed");
    }
    state.SetItemsProcessed(state.iterations() * kSlides);
}
BENCHMARK(BM_SaveMessage200)->Unit(benchmark::kMillisecond);

void BM_OpenMsg200(benchmark::State& state) {
    QTemporaryDir dir;
    clsMMSManager manager;
    manager.Initialize(dir.path() + QStringLiteral("/Messages/"), QStringLiteral("message.xml"));
    if (!longMessage(manager)->SaveMessage()) {
        state.SkipWithError("save failed");
        return;
    }
    for (auto _ : state) {
        auto opened = manager.OpenMsg(QStringLiteral("Long"));
        if (opened->Slides()->Count() != kSlides ||
            opened->Slides()->Item(kSlides)->Image().isNull())
            state.SkipWithError("open lost slides");
        benchmark::DoNotOptimize(opened);
    }
    state.SetItemsProcessed(state.iterations() * kSlides);
}
BENCHMARK(BM_OpenMsg200)->Unit(benchmark::kMillisecond);
} // namespace

int main(int argc, char** argv) {
    return runBenchmarks<QCoreApplication>(argc, argv);
}
