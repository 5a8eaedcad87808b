// GetProp is read in timers and handlers with no cache in front of the document, so its cost on
// a large preferences file matters.
#include "bench/support/BenchMain.h"
#include "config/clsPropertiesXML.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

struct LargeStore {
    QTemporaryDir dir;
    clsPropertiesXML store;
    LargeStore() {
        store.Initialize(dir.filePath(QStringLiteral("tessaly.xml")), QStringLiteral("tessaly"));
        // 2,000 keys in 20 sections of 100.
        for (int s = 0; s < 20; ++s)
            for (int k = 0; k < 100; ++k)
                store.SetProp(QStringLiteral("section%1").arg(s), QStringLiteral("key%1").arg(k),
                              QStringLiteral("value %1.%2").arg(s).arg(k));
        // And 2,000 keys in one section: the worst case for a look-up.
        for (int k = 0; k < 2000; ++k)
            store.SetProp(QStringLiteral("flat"), QStringLiteral("key%1").arg(k),
                          QStringLiteral("v%1").arg(k));
        store.SaveXmlFile();
    }
};

LargeStore& large() {
    static LargeStore s;
    return s;
}

void BM_GetPropLastKey(benchmark::State& state) {
    auto& store = large().store;
    const QString section = QStringLiteral("section19"), key = QStringLiteral("key99");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.GetProp(section, key, QString()));
}
BENCHMARK(BM_GetPropLastKey);

void BM_GetPropLastKeyOfFlatSection(benchmark::State& state) {
    auto& store = large().store;
    const QString section = QStringLiteral("flat"), key = QStringLiteral("key1999");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.GetProp(section, key, QString()));
}
BENCHMARK(BM_GetPropLastKeyOfFlatSection);

void BM_GetPropFirstKey(benchmark::State& state) {
    auto& store = large().store;
    const QString section = QStringLiteral("section0"), key = QStringLiteral("key0");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.GetProp(section, key, QString()));
}
BENCHMARK(BM_GetPropFirstKey);

void BM_GetPropMissingKey(benchmark::State& state) {
    auto& store = large().store;
    const QString section = QStringLiteral("section10"), key = QStringLiteral("absent");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.GetProp(section, key, QStringLiteral("d")));
}
BENCHMARK(BM_GetPropMissingKey);

void BM_SetPropUnchanged(benchmark::State& state) {
    auto& store = large().store;
    const QString section = QStringLiteral("section19"), key = QStringLiteral("key99");
    const QString value = QStringLiteral("value 19.99");
    for (auto _ : state)
        benchmark::DoNotOptimize(store.SetProp(section, key, value));
}
BENCHMARK(BM_SetPropUnchanged);

void BM_LoadLargeFile(benchmark::State& state) {
    const QString file = large().dir.filePath(QStringLiteral("tessaly.xml"));
    for (auto _ : state) {
        clsPropertiesXML store;
        store.Initialize(file, QStringLiteral("tessaly"));
        benchmark::DoNotOptimize(store.isInitialized());
    }
}
BENCHMARK(BM_LoadLargeFile);

} // namespace

int main(int argc, char** argv) {
    return runBenchmarks<QCoreApplication>(argc, argv);
}
