#pragma once

// The main() of a benchmark program: the Qt application object the benchmarks need, then every
// registered benchmark with the command line's --benchmark_* options.
#include <QByteArray>
#include <QtGlobal>
#include <benchmark/benchmark.h>

template <class Application> int runBenchmarks(int argc, char** argv) {
    Application application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

// For benchmarks of widgets: they draw offscreen unless QT_QPA_PLATFORM names a platform.
template <class Application> int runWidgetBenchmarks(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    return runBenchmarks<Application>(argc, argv);
}
