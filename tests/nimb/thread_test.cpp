#include "nimb/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
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
    std::atomic<int> bodies{0};
    std::atomic<bool> stoppingAtEntry{false};
    std::thread::id bodyId, reportedId;
    FunctionThread thread([&](Thread& self) {
        stoppingAtEntry = self.isStopping();
        if (++bodies == 1) {
            bodyId = std::this_thread::get_id();
            reportedId = self.id();
        }
        while (!self.isStopping())
            Thread::sleep(1);
        throw std::runtime_error("swallowed");
    });
    thread.stopRequest();
    EXPECT_FALSE(thread.isStopping()) << "ignored before start()";
    EXPECT_FALSE(thread.tryLock()) << "the mutex is used only while running";
    thread.start();
    ASSERT_TRUE(eventually([&] { return thread.isRunning(); }));
    thread.join();  // asks the body to stop, then waits for it
    EXPECT_TRUE(thread.isStopping());
    EXPECT_FALSE(thread.isRunning());
    EXPECT_NE(bodyId, std::this_thread::get_id());
    EXPECT_EQ(reportedId, bodyId);
    EXPECT_EQ(thread.id(), std::thread::id());
    // The stop request outlives the run: a second start ends at once.
    thread.start();
    thread.join();
    EXPECT_EQ(bodies, 2);
    EXPECT_TRUE(stoppingAtEntry);
}

TEST(ThreadTest, SecondStartRunsAnotherBodyAndJoinWaitsForBoth) {
    std::atomic<int> started{0}, finished{0};
    FunctionThread thread([&](Thread& self) {
        ++started;
        while (!self.isStopping())
            Thread::sleep(1);
        Thread::sleep(20);
        ++finished;
    });
    thread.start();
    thread.start();
    ASSERT_TRUE(eventually([&] { return started == 2; }));
    thread.join();
    EXPECT_EQ(finished, 2);
}

// Records when each callback began and ended; an action that throws leaves
// no record.
class RecordingTimer : public Timer {
public:
    explicit RecordingTimer(bool oneShot = false) : Timer(oneShot) {}
    ~RecordingTimer() override { stop(); }
    void onTimer(Timer&) override {
        const auto begin = Clock::now();
        if (action)
            action();
        std::lock_guard<std::mutex> lock(m_mutex);
        m_spans.push_back({begin, Clock::now()});
    }
    std::vector<std::pair<Clock::time_point, Clock::time_point>> spans() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_spans;
    }
    bool waitTicks(size_t count) {
        return eventually([&] { return spans().size() >= count; });
    }

    std::function<void()> action;  // set before start()

private:
    std::mutex m_mutex;
    std::vector<std::pair<Clock::time_point, Clock::time_point>> m_spans;
};

TEST(TimerTest, NextPeriodCountsFromEndOfCallback) {
    RecordingTimer timer;
    timer.action = [] { Thread::sleep(30); };
    const auto started = Clock::now();
    timer.start(40);
    ASSERT_TRUE(timer.waitTicks(3));
    timer.stop();
    const auto spans = timer.spans();
    EXPECT_GE(spans[0].first - started, milliseconds(40));
    for (size_t i = 1; i < spans.size(); ++i)
        EXPECT_GE(spans[i].first - spans[i - 1].second, milliseconds(40)) << "tick " << i;
    Thread::sleep(50);
    EXPECT_EQ(timer.spans().size(), spans.size()) << "ticked after stop()";
}

TEST(TimerTest, ZeroIntervalTicksAboutEveryMillisecondDespiteExceptions) {
    std::atomic<size_t> calls{0};
    RecordingTimer timer;
    timer.action = [&] {
        ++calls;
        throw SystemException("tick failed", ERR_SYSTEM);
    };
    const auto started = Clock::now();
    timer.start(0);
    ASSERT_TRUE(eventually([&] { return calls >= 50; }));
    timer.stop();
    const auto elapsed = std::chrono::duration_cast<milliseconds>(Clock::now() - started);
    // At least a millisecond lies between two callbacks: no busy loop.
    EXPECT_LE(calls, static_cast<size_t>(elapsed.count()) + 1);
}

TEST(TimerTest, OneShotFiresOnceAfterIntervalAndEnds) {
    RecordingTimer timer(true);
    const auto started = Clock::now();
    timer.start(30);
    ASSERT_TRUE(timer.waitTicks(1));
    EXPECT_GE(timer.spans()[0].first - started, milliseconds(30));
    ASSERT_TRUE(eventually([&] { return !timer.isRunning(); }));
    EXPECT_EQ(timer.spans().size(), 1u);
    EXPECT_FALSE(timer.isStopping());
}

TEST(TimerTest, StoppedTimerNeverTicksAgain) {
    RecordingTimer timer;
    EXPECT_EQ(timer.interval(), 0u);
    timer.stop();
    EXPECT_FALSE(timer.isStopping()) << "stop() of an unstarted timer does nothing";
    timer.start(1);
    ASSERT_TRUE(timer.waitTicks(1));
    timer.stop();
    const size_t ticks = timer.spans().size();
    timer.start(0);
    Thread::sleep(100);
    timer.stop();
    EXPECT_EQ(timer.spans().size(), ticks);
}

TEST(TimerTest, StopWaitsForCallbackAndEndsLongWaits) {
    std::atomic<bool> entered{false};
    RecordingTimer busy;
    busy.action = [&] {
        entered = true;
        Thread::sleep(100);
    };
    busy.start(1);
    ASSERT_TRUE(eventually([&] { return entered.load(); }));
    busy.stop();
    EXPECT_EQ(busy.spans().size(), 1u);

    // Each would wait an hour if the loop missed the wake-up.
    RecordingTimer stopped, shortened;
    stopped.start(3600 * 1000);
    shortened.start(3600 * 1000);
    Thread::sleep(20);
    stopped.stop();
    shortened.setInterval(1);
    EXPECT_TRUE(shortened.waitTicks(1));
    EXPECT_TRUE(stopped.spans().empty());
}

}  // namespace
