// How much an idle process with one periodic timer costs: a nimb::Timer with
// a 3000 ms interval runs while the main thread sleeps; the program prints
// the process's voluntary context switches per second (every thread's count
// from /proc) and the CPU time it used.
//
//   bench_timer_idle [seconds] [--poll]
//
// seconds defaults to 10. --poll measures, for comparison, a thread that
// checks its deadline after every 1 ms sleep instead.
#include "nimb/thread.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fstream>
#include <string>

namespace {

// The sum of voluntary_ctxt_switches over every thread of this process.
long long voluntarySwitches() {
    long long total = 0;
    DIR* tasks = opendir("/proc/self/task");
    if (!tasks)
        return -1;
    while (dirent* entry = readdir(tasks)) {
        if (entry->d_name[0] == '.')
            continue;
        std::ifstream status(std::string("/proc/self/task/") + entry->d_name + "/status");
        std::string line;
        while (std::getline(status, line))
            if (line.rfind("voluntary_ctxt_switches:", 0) == 0)
                total += std::atoll(line.c_str() + std::strlen("voluntary_ctxt_switches:"));
    }
    closedir(tasks);
    return total;
}

double cpuSeconds() {
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) / 1e9;
}

class IdleTimer : public nimb::Timer {
public:
    ~IdleTimer() override { stop(); }
    void onTimer(nimb::Timer&) override { ++ticks; }
    std::atomic<int> ticks{0};
};

// The mechanism the timer replaces: look at the clock after every 1 ms sleep.
class PollingThread : public nimb::Thread {
public:
    ~PollingThread() override { stop(); }
    void run(nimb::Thread& self) override {
        auto last = std::chrono::steady_clock::now();
        while (!self.isStopping()) {
            if (std::chrono::steady_clock::now() - last >= std::chrono::milliseconds(3000)) {
                ++ticks;
                last = std::chrono::steady_clock::now();
            }
            nimb::Thread::sleep(1);
        }
    }
    std::atomic<int> ticks{0};
};

}  // namespace

int main(int argc, char** argv) {
    int seconds = 10;
    bool poll = false;
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--poll") == 0)
            poll = true;
        else
            seconds = std::atoi(argv[i]);
    }
    if (seconds <= 0) {
        std::fprintf(stderr, "usage: %s [seconds] [--poll]\n", argv[0]);
        return 2;
    }

    IdleTimer timer;
    PollingThread polling;
    if (poll)
        polling.start();
    else
        timer.start(3000);
    // Let the thread settle into its wait before counting.
    nimb::Thread::sleep(100);

    const long long switchesBefore = voluntarySwitches();
    const double cpuBefore = cpuSeconds();
    const auto wallBefore = std::chrono::steady_clock::now();
    nimb::Thread::sleep(static_cast<unsigned long>(seconds) * 1000);
    const double wall = std::chrono::duration<double>(std::chrono::steady_clock::now() - wallBefore).count();
    const double cpu = cpuSeconds() - cpuBefore;
    const long long switches = voluntarySwitches() - switchesBefore;

    const int ticks = poll ? polling.ticks.load() : timer.ticks.load();
    std::printf("mechanism:                  %s\n", poll ? "1 ms polling" : "nimb::Timer, 3000 ms");
    std::printf("idle time:                  %.3f s\n", wall);
    std::printf("ticks:                      %d\n", ticks);
    std::printf("voluntary context switches: %lld (%.2f per second)\n", switches, switches / wall);
    std::printf("CPU time:                   %.6f s (%.4f %% of one core)\n", cpu, 100.0 * cpu / wall);
    return 0;
}
