#include "nimb/thread.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <stdexcept>
#include <vector>

namespace {

using namespace nimb;
using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

// Generous: only reached when something is broken.
const auto PATIENCE = std::chrono::seconds(20);

// Polls until done() holds or PATIENCE runs out; gives done()'s last answer.
bool eventually(const std::function<bool()>& done) {
    const auto end = Clock::now() + PATIENCE;
    while (!done() && Clock::now() < end)
        std::this_thread::sleep_for(milliseconds(1));
    return done();
}

// A thread whose body runs a given function.
class FunctionThread : public Thread {
public:
    explicit FunctionThread(std::function<void(Thread&)> body) : m_body(std::move(body)) {}
    ~FunctionThread() override { stop(); }
    void run(Thread& thread) override { m_body(thread); }

private:
    std::function<void(Thread&)> m_body;
};

void untilStopping(Thread& thread) {
    while (!thread.isStopping())
        Thread::sleep(1);
}

TEST(ThreadTest, RunsBodyUntilJoinAsksItToStop) {
    std::atomic<bool> sawRunning{false};
    std::thread::id bodyId;
    std::thread::id reportedId;
    FunctionThread thread([&](Thread& self) {
        sawRunning = self.isRunning();
        bodyId = std::this_thread::get_id();
        reportedId = self.id();
        untilStopping(self);
    });
    EXPECT_FALSE(thread.isRunning());
    thread.stopRequest();
    EXPECT_FALSE(thread.isStopping()) << "a stop request before start() is ignored";
    thread.start();
    ASSERT_TRUE(eventually([&] { return thread.isRunning(); }));
    EXPECT_NE(thread.handle(), std::thread::native_handle_type());
    thread.join();
    EXPECT_TRUE(thread.isStopping());
    EXPECT_FALSE(thread.isRunning());
    EXPECT_TRUE(sawRunning);
    EXPECT_NE(bodyId, std::this_thread::get_id());
    EXPECT_EQ(reportedId, bodyId);
    EXPECT_EQ(thread.id(), std::thread::id());
    EXPECT_EQ(thread.handle(), std::thread::native_handle_type());
}

TEST(ThreadTest, ExceptionsFromRunAreSwallowed) {
    for (int kind = 0; kind < 2; ++kind) {
        std::atomic<bool> thrown{false};
        FunctionThread thread([&](Thread&) {
            thrown = true;
            if (kind == 0)
                throw SystemException("boom", ERR_SYSTEM);
            throw 42;
        });
        thread.start();
        ASSERT_TRUE(eventually([&] { return thrown && !thread.isRunning(); }));
        thread.stop();
    }
}

TEST(ThreadTest, StoppedThreadEndsAtOnceWhenStartedAgain) {
    std::atomic<int> bodies{0};
    std::atomic<int> stoppingAtEntry{0};
    FunctionThread thread([&](Thread& self) {
        ++bodies;
        if (self.isStopping())
            ++stoppingAtEntry;
        untilStopping(self);
    });
    thread.start();
    thread.stop();
    thread.start();
    // Would never return if the old stop request had been cleared.
    thread.join();
    EXPECT_EQ(bodies, 2);
    EXPECT_GE(stoppingAtEntry, 1);
}

TEST(ThreadTest, SecondStartRunsSecondBodyAndJoinWaitsForBoth) {
    std::atomic<int> started{0};
    std::atomic<int> finished{0};
    FunctionThread thread([&](Thread& self) {
        ++started;
        untilStopping(self);
        Thread::sleep(20);
        ++finished;
    });
    thread.start();
    thread.start();
    ASSERT_TRUE(eventually([&] { return started == 2; }));
    thread.join();
    EXPECT_EQ(finished, 2);
}

// Uses no member of its own and, once detached, makes no call on itself, so
// that it may run on while its object is destroyed.
std::atomic<bool> detachedEntered{false};
std::atomic<bool> detachedReleased{false};
std::atomic<bool> detachedFinished{false};

class DetachedThread : public Thread {
public:
    void run(Thread&) override {
        detachedEntered = true;
        while (!detachedReleased)
            Thread::sleep(1);
        Thread::sleep(20);
        detachedFinished = true;
    }
};

TEST(ThreadTest, DestructorWaitsForDetachedBody) {
    {
        DetachedThread thread;
        thread.start();
        ASSERT_TRUE(eventually([] { return detachedEntered.load(); }));
        thread.detach();
        thread.join();  // only asks: a detached thread cannot be joined
        EXPECT_TRUE(thread.isStopping());
        detachedReleased = true;
    }
    EXPECT_TRUE(detachedFinished);
}

TEST(ThreadTest, BodyMayStopItself) {
    std::atomic<bool> returned{false};
    FunctionThread thread([&](Thread& self) {
        self.stop();
        returned = self.isStopping();
    });
    thread.start();
    ASSERT_TRUE(eventually([&] { return returned.load(); }));
    thread.join();
}

TEST(ThreadTest, MutexIsUsedOnlyWhileRunning) {
    FunctionThread thread(untilStopping);
    EXPECT_FALSE(thread.tryLock());
    thread.unlock();  // ignored: nothing runs
    thread.start();
    ASSERT_TRUE(eventually([&] { return thread.isRunning(); }));
    thread.lock();
    bool whileHeld = true;
    std::thread([&] { whileHeld = thread.tryLock(); }).join();
    thread.unlock();
    bool afterUnlock = false;
    std::thread([&] {
        afterUnlock = thread.tryLock();
        if (afterUnlock)
            thread.unlock();
    }).join();
    EXPECT_FALSE(whileHeld);
    EXPECT_TRUE(afterUnlock);
    thread.join();
    EXPECT_FALSE(thread.tryLock());
}

// A timer that records when each callback began and ended, and can run a
// given action inside the callback.
class RecordingTimer : public Timer {
public:
    explicit RecordingTimer(bool oneShot = false) : Timer(oneShot) {}
    ~RecordingTimer() override { stop(); }

    void onTimer(Timer& timer) override {
        EXPECT_EQ(&timer, this);
        const auto begin = Clock::now();
        if (++m_inside > 1)
            m_overlapped = true;
        if (action)
            action();
        --m_inside;
        std::lock_guard<std::mutex> lock(m_mutex);
        m_ticks.push_back({begin, Clock::now()});
        m_threads.push_back(std::this_thread::get_id());
    }

    size_t ticks() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_ticks.size();
    }
    bool waitTicks(size_t count) {
        return eventually([&] { return ticks() >= count; });
    }
    std::vector<std::pair<Clock::time_point, Clock::time_point>> spans() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_ticks;
    }
    std::vector<std::thread::id> threads() {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_threads;
    }
    bool overlapped() const { return m_overlapped; }

    // Set before start().
    std::function<void()> action;

private:
    std::mutex m_mutex;
    std::vector<std::pair<Clock::time_point, Clock::time_point>> m_ticks;
    std::vector<std::thread::id> m_threads;
    std::atomic<int> m_inside{0};
    std::atomic<bool> m_overlapped{false};
};

class OneShot : public OneShotTimer {
public:
    ~OneShot() override { stop(); }
    void onTimer(Timer&) override { ++ticks; }
    std::atomic<int> ticks{0};
};

TEST(TimerTest, TicksOnItsOwnThreadUntilStopped) {
    RecordingTimer timer;
    EXPECT_EQ(timer.interval(), 0u);
    timer.start(10);
    EXPECT_EQ(timer.interval(), 10u);
    ASSERT_TRUE(timer.waitTicks(3));
    EXPECT_TRUE(timer.isRunning());
    EXPECT_EQ(&timer.thread(), &static_cast<const Timer&>(timer).thread());
    timer.stop();
    EXPECT_TRUE(timer.isStopping());
    EXPECT_FALSE(timer.isRunning());
    const size_t ticks = timer.ticks();
    Thread::sleep(50);
    EXPECT_EQ(timer.ticks(), ticks);
    for (std::thread::id id : timer.threads()) {
        EXPECT_NE(id, std::this_thread::get_id());
        EXPECT_EQ(id, timer.threads().front());
    }
}

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
    EXPECT_FALSE(timer.overlapped());
}

TEST(TimerTest, ZeroIntervalTicksAboutEveryMillisecond) {
    RecordingTimer timer;
    const auto started = Clock::now();
    timer.start(0);
    ASSERT_TRUE(timer.waitTicks(50));
    timer.stop();
    const auto elapsed = std::chrono::duration_cast<milliseconds>(Clock::now() - started);
    // At least a millisecond between two callbacks: no busy loop.
    EXPECT_LE(timer.ticks(), static_cast<size_t>(elapsed.count()) + 1);
    EXPECT_FALSE(timer.overlapped());
}

TEST(TimerTest, ExceptionsFromCallbackAreSwallowed) {
    std::atomic<int> calls{0};
    RecordingTimer timer;
    timer.action = [&] {
        ++calls;
        if (calls % 2)
            throw SystemException("tick failed", ERR_SYSTEM);
        throw std::runtime_error("tick failed");
    };
    timer.start(1);
    EXPECT_TRUE(eventually([&] { return calls >= 4; }));
    timer.stop();
    EXPECT_EQ(timer.ticks(), 0u);
}

TEST(TimerTest, OneShotFiresOnceAfterIntervalAndEnds) {
    OneShot timer;
    const auto started = Clock::now();
    timer.start(30);
    ASSERT_TRUE(eventually([&] { return timer.ticks == 1; }));
    EXPECT_GE(Clock::now() - started, milliseconds(30));
    ASSERT_TRUE(eventually([&] { return !timer.isRunning(); }));
    Thread::sleep(50);
    EXPECT_EQ(timer.ticks, 1);
    EXPECT_FALSE(timer.isStopping());
    timer.stop();
}

TEST(TimerTest, StopOfUnstartedTimerDoesNothing) {
    RecordingTimer timer;
    timer.stop();
    EXPECT_FALSE(timer.isStopping());
    EXPECT_FALSE(timer.isRunning());
}

TEST(TimerTest, RestartedTimerNeverTicks) {
    RecordingTimer timer;
    timer.start(1);
    ASSERT_TRUE(timer.waitTicks(1));
    timer.stop();
    const size_t ticks = timer.ticks();
    timer.start(0);
    Thread::sleep(100);
    timer.stop();
    EXPECT_EQ(timer.ticks(), ticks);
}

TEST(TimerTest, StopWaitsForRunningCallback) {
    RecordingTimer timer;
    std::atomic<bool> entered{false};
    std::atomic<bool> finished{false};
    timer.action = [&] {
        entered = true;
        Thread::sleep(100);
        finished = true;
    };
    timer.start(1);
    ASSERT_TRUE(eventually([&] { return entered.load(); }));
    timer.stop();
    EXPECT_TRUE(finished);
}

TEST(TimerTest, LongWaitEndsOnStopOrNewInterval) {
    RecordingTimer stopped;
    stopped.start(3600 * 1000);
    Thread::sleep(20);
    const auto before = Clock::now();
    stopped.stop();
    EXPECT_LT(Clock::now() - before, PATIENCE);
    EXPECT_EQ(stopped.ticks(), 0u);

    RecordingTimer shortened;
    shortened.start(3600 * 1000);
    Thread::sleep(20);
    shortened.setInterval(1);
    EXPECT_TRUE(shortened.waitTicks(1));
}

}  // namespace
