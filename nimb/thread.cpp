#include "nimb/thread.h"

#include <algorithm>
#include <chrono>
#include <system_error>

#include <sched.h>

namespace nimb {

Runnable::~Runnable() = default;

Thread::Thread() = default;

Thread::~Thread() {
    // Destructors are noexcept: anything stop() throws ends the process.
    stop();
    // A detached body still uses this object: wait until it has returned.
    std::unique_lock<std::mutex> lock(m_bodyMutex);
    m_bodyDone.wait(lock, [this] { return m_bodies == 0; });
}

void Thread::body() {
    // start() holds the lock until the new thread is stored, so id() and
    // handle() called from run() see it.
    { std::lock_guard<std::mutex> stored(m_bodyMutex); }
    m_running = true;
    try {
        run(*this);
    } catch (...) {
    }
    std::lock_guard<std::mutex> lock(m_bodyMutex);
    m_running = false;
    --m_bodies;
    m_bodyDone.notify_all();
}

void Thread::start() {
    std::lock_guard<std::mutex> lock(m_bodyMutex);
    // An earlier thread is kept to be joined later instead of being leaked,
    // so that it can never outlive this object.
    if (m_thread && m_thread->joinable())
        m_earlier.push_back(std::move(m_thread));
    try {
        m_thread = std::make_unique<std::thread>(&Thread::body, this);
    } catch (const std::exception&) {
        m_thread.reset();
        throw SystemException("Error creating thread", ERR_SYSTEM);
    }
    ++m_bodies;
}

void Thread::stop() { join(); }

void Thread::stopRequest() {
    if (m_thread)
        m_stopping = true;
}

void Thread::join() {
    if (!m_thread)
        return;
    stopRequest();
    // Joining itself would deadlock; the stop request is all the body needs.
    if (m_thread->get_id() == std::this_thread::get_id())
        return;
    for (auto& earlier : m_earlier)
        earlier->join();
    m_earlier.clear();
    if (m_thread->joinable()) {
        m_thread->join();
        m_thread.reset();
    }
}

void Thread::detach() {
    if (m_thread && m_thread->joinable())
        m_thread->detach();
}

bool Thread::tryLock() { return isRunning() && m_mutex.try_lock(); }

void Thread::lock() {
    if (isRunning())
        m_mutex.lock();
}

void Thread::unlock() {
    if (isRunning())
        m_mutex.unlock();
}

bool Thread::isRunning() const { return m_running; }

bool Thread::isStopping() const { return m_stopping; }

std::thread::id Thread::id() const {
    return isRunning() && m_thread ? m_thread->get_id() : std::thread::id();
}

std::thread::native_handle_type Thread::handle() const {
    return isRunning() && m_thread ? m_thread->native_handle() : std::thread::native_handle_type();
}

void Thread::sleep(unsigned long ms) { std::this_thread::sleep_for(std::chrono::milliseconds(ms)); }

void Thread::uSleep(unsigned long long us) {
    std::this_thread::sleep_for(std::chrono::microseconds(us));
}

void Thread::yield() { sched_yield(); }

Timer::TimerThread::TimerThread(Timer& timer) : m_timer(timer) {}

Timer::TimerThread::~TimerThread() {
    // Here stop() still reaches this class's stopRequest(), which wakes the loop.
    stop();
}

void Timer::TimerThread::run(Thread&) {
    using Clock = std::chrono::steady_clock;
    // The loop sleeps until its deadline or a wake-up instead of polling every
    // millisecond; the steady clock keeps a step of the wall clock from
    // stalling or hurrying it. At least 1 ms lies between two checks, so an
    // interval of 0 ticks about every millisecond instead of spinning.
    Clock::time_point last = Clock::now();
    std::unique_lock<std::mutex> lock(m_waitMutex);
    while (!isStopping()) {
        const auto period = std::chrono::milliseconds(std::max<std::uint64_t>(m_timer.interval(), 1));
        if (Clock::now() < last + period) {
            m_wakeUp.wait_until(lock, last + period);
            continue;
        }
        lock.unlock();
        try {
            m_timer.onTimer(m_timer);
        } catch (...) {
        }
        last = Clock::now();
        if (m_timer.m_oneShot)
            return;
        lock.lock();
    }
}

void Timer::TimerThread::stopRequest() {
    Thread::stopRequest();
    wake();
}

void Timer::TimerThread::wake() {
    // Taking the lock orders the wake-up after the loop's last look at its
    // state, so it cannot be lost between that look and the wait.
    std::lock_guard<std::mutex> lock(m_waitMutex);
    m_wakeUp.notify_all();
}

Timer::Timer() : Timer(false) {}

Timer::Timer(bool oneShot) : m_thread(*this), m_oneShot(oneShot) {}

Timer::~Timer() { stop(); }

void Timer::start(unsigned long interval) {
    setInterval(interval);
    start();
}

void Timer::start() { m_thread.start(); }

void Timer::stop() { m_thread.stop(); }

void Timer::setInterval(unsigned long interval) {
    m_interval = interval;
    m_thread.wake();
}

bool Timer::isRunning() const { return m_thread.isRunning(); }

bool Timer::isStopping() const { return m_thread.isStopping(); }

unsigned long Timer::interval() const { return m_interval; }

Timer::TimerThread& Timer::thread() { return m_thread; }

const Timer::TimerThread& Timer::thread() const { return m_thread; }

OneShotTimer::OneShotTimer() : Timer(true) {}

OneShotTimer::~OneShotTimer() = default;

}  // namespace nimb
