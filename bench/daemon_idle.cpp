// How much the idle daemon costs: it supervises 1 and then 100 simulated
// devices on mains for 30 s each, in the same isolation as the end-to-end
// tests, and this program reads its threads' wake-ups, CPU time and memory
// from /proc. Goals: at most 1 wake-up per second beyond the ticks, under
// 1 ms of CPU per tick for 100 devices at FATAL level, under 15 MiB resident.
#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>

#include "tests/service/isolation.h"

namespace {

constexpr int SECONDS = 30;
constexpr double TICK_SECONDS = 3.0;

long statusField(const std::string& path, const std::string& key) {
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        if (line.rfind(key + ":", 0) == 0) {
            return std::atol(line.c_str() + key.size() + 1);
        }
    }
    return 0;
}

// Voluntary context switches of every thread of the process.
long wakeUps(pid_t pid) {
    const std::string tasks = "/proc/" + std::to_string(pid) + "/task";
    long total = 0;
    if (DIR* dir = opendir(tasks.c_str())) {
        while (dirent* entry = readdir(dir)) {
            if (entry->d_name[0] != '.') {
                total += statusField(tasks + "/" + entry->d_name + "/status",
                                     "voluntary_ctxt_switches");
            }
        }
        closedir(dir);
    }
    return total;
}

// User plus system CPU time of the process, in milliseconds.
double cpuMs(pid_t pid) {
    std::ifstream in("/proc/" + std::to_string(pid) + "/stat");
    std::string stat((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    std::istringstream fields(stat.substr(stat.rfind(')') + 2));
    std::string field;
    long utime = 0, stime = 0;
    for (int i = 3; fields >> field; ++i) {
        if (i == 14) utime = std::atol(field.c_str());
        if (i == 15) {
            stime = std::atol(field.c_str());
            break;
        }
    }
    return (utime + stime) * 1000.0 / sysconf(_SC_CLK_TCK);
}

bool measure(int deviceCount, const std::string& level) {
    e2e::Suite suite("daemon-idle-" + std::to_string(deviceCount) + "-" + level);
    suite.logLevel(level);
    std::vector<e2e::SimDevice> devices;
    for (int i = 0; i < deviceCount; ++i) {
        char id[16];
        std::snprintf(id, sizeof id, "UPS-%03d", i);
        devices.push_back(e2e::simDevice(id));
    }
    suite.scenario(devices, {}, "");
    const pid_t pid = suite.launch();
    // Let it start and settle before counting.
    sleep(4);
    const long wakeStart = wakeUps(pid);
    const double cpuStart = cpuMs(pid);
    sleep(SECONDS);
    const long wakes = wakeUps(pid) - wakeStart;
    const double cpu = cpuMs(pid) - cpuStart;
    const long rssKiB = statusField("/proc/" + std::to_string(pid) + "/status", "VmRSS");
    const double ticks = SECONDS / TICK_SECONDS;
    std::printf("%3d device(s), %-5s log: %5.2f wake-ups/s (ticks %.2f/s), %6.3f ms CPU per tick, "
                "%5.1f MiB resident\n",
                deviceCount, level.c_str(), wakes / double(SECONDS), 1 / TICK_SECONDS, cpu / ticks,
                rssKiB / 1024.0);
    suite.killAll();
    return true;
}

}  // namespace

int main() {
    e2e::Isolation& isolation = e2e::Isolation::instance();
    if (!isolation.ready()) {
        std::cerr << "daemon_idle: " << isolation.error() << "\n";
        return 1;
    }
    measure(1, "FATAL");
    measure(100, "FATAL");
    measure(100, "TRACE");
    return 0;
}
