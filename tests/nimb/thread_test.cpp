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
    std::atomic<bool> stoppingAtEntry{false};
    std::thread::id bodyId, reportedId;
    FunctionThread thread([&](Thread& self) {
        stoppingAtEntry = self.isStopping();
        if (started == 0) {
            bodyId = std::this_thread::get_id();
            reportedId = self.id();
        }
        ++started;
        while (!self.isStopping())
            Thread::sleep(1);
        Thread::sleep(20);
        ++finished;
        throw std::runtime_error("swallowed");
    });
    thread.stopRequest();
    EXPECT_FALSE(thread.isStopping()) << "ignored before start()";
    EXPECT_FALSE(thread.tryLock()) << "the mutex is used only while running";
    thread.start();
    ASSERT_TRUE(eventually([&] { return started == 1 && thread.isRunning(); }));
    thread.start();  // a second body: join() waits for both
    ASSERT_TRUE(eventually([&] { return started == 2; }));
    thread.join();  // asks the bodies to stop, then waits for them
    EXPECT_EQ(finished, 2);
    EXPECT_TRUE(thread.isStopping());
    EXPECT_FALSE(thread.isRunning());
    EXPECT_NE(bodyId, std::this_thread::get_id());
    EXPECT_EQ(reportedId, bodyId);
    EXPECT_EQ(thread.id(), std::thread::id());
    // The stop request outlives the run: a third start ends at once.
    thread.start();
    thread.join();
    EXPECT_EQ(finished, 3);
    EXPECT_TRUE(stoppingAtEntry);
}

class FunctionTimer : public Timer {
public:
    explicit FunctionTimer(std::function<void()> tick, bool oneShot = false)
        : Timer(oneShot), m_tick(std::move(tick)) {}
    ~FunctionTimer() override { stop(); }
    void onTimer(Timer&) override { m_tick(); }

private:
    std::function<void()> m_tick;
};

TEST(TimerTest, NextPeriodCountsFromEndOfCallbackAndStopIsFinal) {
    std::vector<std::pair<Clock::time_point, Clock::time_point>> spans;
    std::atomic<size_t> ticks{0};
    FunctionTimer timer([&] {
        const auto begin = Clock::now();
        Thread::sleep(30);
        spans.push_back({begin, Clock::now()});
        ++ticks;
    });
    EXPECT_EQ(timer.interval(), 0u);
    timer.stop();
    EXPECT_FALSE(timer.isStopping()) << "stop() of an unstarted timer does nothing";
    const auto started = Clock::now();
    timer.start(40);
    ASSERT_TRUE(eventually([&] { return ticks >= 3; }));
    timer.stop();
    EXPECT_GE(spans[0].first - started, milliseconds(40));
    for (size_t i = 1; i < spans.size(); ++i)
        EXPECT_GE(spans[i].first - spans[i - 1].second, milliseconds(40)) << "tick " << i;
    // A stopped timer never ticks again, not even when started anew.
    timer.start(0);
    Thread::sleep(50);
    timer.stop();
    EXPECT_EQ(ticks, spans.size());
}

TEST(TimerTest, ZeroIntervalTicksAboutEveryMillisecondDespiteExceptions) {
    std::atomic<size_t> calls{0};
    FunctionTimer timer([&] {
        ++calls;
        throw SystemException("tick failed", ERR_SYSTEM);
    });
    const auto started = Clock::now();
    timer.start(0);
    ASSERT_TRUE(eventually([&] { return calls >= 50; }));
    timer.stop();
    const auto elapsed = std::chrono::duration_cast<milliseconds>(Clock::now() - started);
    // At least a millisecond lies between two callbacks: no busy loop.
    EXPECT_LE(calls, static_cast<size_t>(elapsed.count()) + 1);
}

TEST(TimerTest, OneShotFiresOnceAfterIntervalAndEnds) {
    std::atomic<int> ticks{0};
    Clock::time_point fired;
    FunctionTimer timer(
        [&] {
            fired = Clock::now();
            ++ticks;
        },
        true);
    const auto started = Clock::now();
    timer.start(30);
    ASSERT_TRUE(eventually([&] { return ticks > 0 && !timer.isRunning(); }));
    EXPECT_GE(fired - started, milliseconds(30));
    EXPECT_EQ(ticks, 1);
    EXPECT_FALSE(timer.isStopping());
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
    std::atomic<int> stoppedTicks{0}, shortenedTicks{0};
    FunctionTimer stopped([&] { ++stoppedTicks; }), shortened([&] { ++shortenedTicks; });
    stopped.start(3600 * 1000);
    shortened.start(3600 * 1000);
    Thread::sleep(20);
    stopped.stop();
    shortened.setInterval(1);
    EXPECT_TRUE(eventually([&] { return shortenedTicks > 0; }));
    EXPECT_EQ(stoppedTicks, 0);
}

}  // namespace
