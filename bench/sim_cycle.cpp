// What one supervision cycle costs against the simulated monitor: the device
// list, then each device's countdown and shutdown settings, through the
// binding and a real dlopen of plugins/sim, for 1, 10 and 100 devices.
#include <benchmark/benchmark.h>

#include <QFile>
#include <QTemporaryDir>

#include <fstream>

#include "tessary/ldclient.h"

namespace {

void SimCycle(benchmark::State& state) {
    QTemporaryDir dir;
    const std::string folder = dir.path().toStdString() + "/";
    QFile::copy(SHUTSVC_PLUGIN_DIR "/sim/client.so", QString::fromStdString(folder + "client.so"));
    std::string devices;
    for (int i = 0; i < state.range(0); ++i)
        devices += std::string(i ? "," : "") + R"({"device": {"id": "UPS)" + std::to_string(i) +
                   R"("}, "shutCfg": {"counterOpBattery": 600}})";
    std::ofstream(folder + "simulator.json")
        << R"({"devices": [)" << devices << R"(], "timeline": [{"at": 0, "event": "mainsFail"}]})";

    tessary::LibClient client;
    client.load(folder + "client.so");
    client.connect("http://localhost:4470");
    for (auto _ : state) {
        for (const auto& entry : client.devices()) {
            benchmark::DoNotOptimize(client.counter(entry.first.c_str()));
            benchmark::DoNotOptimize(client.devShutdownConfig(entry.first.c_str()));
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

}  // namespace

BENCHMARK(SimCycle)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMicrosecond);
BENCHMARK_MAIN();
