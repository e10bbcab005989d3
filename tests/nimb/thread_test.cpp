#include "nimb/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <vector>

namespace {

using namespace nimb;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Polls until done() holds; gives up after a time only a fault can take.
bool eventually(const std::function<bool()>& done) {
    const auto end = Clock::now() + std::chrono::seconds(20);
    while (!done() && Clock::now() < end)
        Thread::sleep(1);
    return done();
}

class FunctionThread : public Thread {
public:
    explicit FunctionThread(std::function<void(Thread&)> body) : m_body(std::move(body)) {}
    ~FunctionThread() override { stop(); }
    void run(Thread& thread) override { m_body(thread); }

private:
    std::function<void(Thread&)> m_body;
};

TEST(ThreadTest, LifecycleAndStopRequests) {
    std::atomic<int> started{0}, finished{0};
    FunctionThread thread([&](Thread& self) {
        ++started;
        while (!self.isStopping())
            Thread::sleep(1);
        Thread::sleep(20);
        ++finished;
        throw std::runtime_error("swallowed");
    });
    thread.stopRequest();  // ignored before start()
    thread.start();
    ASSERT_TRUE(eventually([&] { return started == 1 && thread.isRunning(); }));
    EXPECT_FALSE(thread.isStopping());
    thread.start();  // a second body: join() waits for both
    ASSERT_TRUE(eventually([&] { return started == 2; }));
    thread.join();  // asks the bodies to stop, then waits for them
    EXPECT_EQ(finished, 2);
}

class FunctionTimer : public Timer {
public:
    explicit FunctionTimer(std::function<void()> tick) : m_tick(std::move(tick)) {}
    ~FunctionTimer() override { stop(); }
    void onTimer(Timer&) override { m_tick(); }

private:
    std::function<void()> m_tick;
};

TEST(TimerTest, NextPeriodCountsFromEndOfCallbackDespiteExceptions) {
    std::vector<std::pair<Clock::time_point, Clock::time_point>> spans;
    std::atomic<size_t> ticks{0};
    FunctionTimer timer([&] {
        const auto begin = Clock::now();
        Thread::sleep(30);
        spans.push_back({begin, Clock::now()});
        ++ticks;
        throw SystemException("tick failed", ERR_SYSTEM);
    });
    timer.stop();  // before start(): does nothing, the timer still ticks
    const auto started = Clock::now();
    timer.start(40);
    ASSERT_TRUE(eventually([&] { return ticks >= 3; }));
    timer.stop();
    EXPECT_GE(spans[0].first - started, milliseconds(40));
    for (size_t i = 1; i < spans.size(); ++i)
        EXPECT_GE(spans[i].first - spans[i - 1].second, milliseconds(40)) << "tick " << i;
}

TEST(TimerTest, StopWaitsForCallbackAndEndsLongWaits) {
    std::atomic<int> entered{0}, left{0};
    FunctionTimer busy([&] {
        ++entered;
        Thread::sleep(100);
        ++left;
    });
    busy.start(1);
    ASSERT_TRUE(eventually([&] { return entered > 0; }));
    busy.stop();
    EXPECT_EQ(entered + left, 2);

    // Each would wait an hour if the loop missed the wake-up.
    std::atomic<int> ticks{0};
    FunctionTimer stopped([] {}), shortened([&] { ++ticks; });
    stopped.start(3600 * 1000);
    shortened.start(3600 * 1000);
    Thread::sleep(20);
    stopped.stop();
    shortened.setInterval(1);
    EXPECT_TRUE(eventually([&] { return ticks > 0; }));
}

}  // namespace
