// Threads that run a Runnable, and periodic and one-shot timers on top of them.
#pragma once

#include "nimb/object.h"

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace nimb {

class Thread;

// Work that a Thread runs.
class Runnable : public Object {
public:
    ~Runnable() override;

    // The work itself, called on the new thread with the Thread that runs it.
    virtual void run(Thread& thread) = 0;
};

// One operating-system thread that runs this object's own run(). A subclass
// implements run() and polls isStopping() to end when asked.
//
// The owner serialises start(), stop(), join() and detach(); isRunning() and
// isStopping() may be read from any thread.
class Thread : public Runnable {
public:
    Thread();
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;
    // Stops and joins the thread, and waits for a detached body to return.
    // A subclass whose run() uses its own members calls stop() in its own
    // destructor, so the body never runs on a half-destroyed object.
    ~Thread() override;

    // Starts a new thread whose body sets the running flag, calls run(*this),
    // swallows anything it throws and clears the running flag. Never refuses:
    // a second start() runs a second body, and a stop request left over from
    // an earlier run is kept, so a thread stopped once ends at once when
    // started again.
    // Throws SystemException "Error creating thread" (ERR_SYSTEM) when the
    // thread cannot be created.
    virtual void start();
    // Same as join().
    virtual void stop();
    // Asks the body to end: isStopping() becomes true for good. Does nothing
    // when start() was never called.
    virtual void stopRequest();
    // Asks the body to end, then waits until it has returned and deletes the
    // thread. Called from the body itself it only asks.
    virtual void join();
    // Lets the thread run on its own; join() then no longer waits for it.
    virtual void detach();

    // The mutex of this thread, acted on only while isRunning() is true.
    // tryLock() answers false when nothing is running; lock() throws
    // std::system_error when locking fails.
    virtual bool tryLock();
    virtual void lock();
    virtual void unlock();

    // True from the start of the body until it returns.
    virtual bool isRunning() const;
    // True once stopRequest() was called after a start().
    virtual bool isStopping() const;
    // The thread's identity and native handle while running; default values
    // otherwise.
    virtual std::thread::id id() const;
    virtual std::thread::native_handle_type handle() const;

    // Sleeps the calling thread for ms milliseconds.
    static void sleep(unsigned long ms);
    // Sleeps the calling thread for us microseconds.
    static void uSleep(unsigned long long us);
    // Gives the processor to another ready thread.
    static void yield();

private:
    void body();

    std::unique_ptr<std::thread> m_thread;
    // Threads replaced by a later start() while still joinable; join() waits
    // for them too.
    std::vector<std::unique_ptr<std::thread>> m_earlier;
    std::mutex m_mutex;
    // Atomic: one thread writes them while another polls them.
    std::atomic<bool> m_stopping{false};
    std::atomic<bool> m_running{false};
    // Guards m_bodies; start() holds it until the new thread is stored.
    std::mutex m_bodyMutex;
    std::condition_variable m_bodyDone;
    int m_bodies = 0;
};

// A periodic timer: a thread of its own calls onTimer() every interval
// milliseconds, the next period counted from the end of the callback, so
// periods are at least the interval plus the callback's duration and
// callbacks never overlap. An interval of 0 calls back about every
// millisecond. Exceptions from onTimer() are swallowed.
//
// A subclass calls stop() in its destructor, so that no callback runs while
// it is being destroyed.
class Timer : public Object {
public:
    // The thread that runs the timer's loop.
    class TimerThread : public Thread {
    public:
        explicit TimerThread(Timer& timer);
        ~TimerThread() override;

        void run(Thread& thread) override;
        // Also wakes the loop so that it ends without waiting for its deadline.
        void stopRequest() override;
        // Wakes the loop so that it looks at the interval again.
        void wake();

    private:
        Timer& m_timer;
        std::mutex m_waitMutex;
        std::condition_variable m_wakeUp;
    };

    Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    // Stops the timer; a running callback finishes first.
    ~Timer() override;

    // The callback, on the timer's thread.
    virtual void onTimer(Timer& timer) = 0;
    // setInterval(interval), then start().
    virtual void start(unsigned long interval);
    // Starts the timer's thread. A timer stopped once never ticks again.
    virtual void start();
    // Asks the loop to end and waits for it; a running callback finishes
    // first. Does nothing on a timer that was never started.
    virtual void stop();
    // The period in milliseconds; takes effect for the running period too.
    virtual void setInterval(unsigned long interval);
    virtual bool isRunning() const;
    virtual bool isStopping() const;
    // The period in milliseconds, 0 after construction.
    virtual unsigned long interval() const;
    virtual TimerThread& thread();
    virtual const TimerThread& thread() const;

protected:
    // For subclasses that fire only once.
    explicit Timer(bool oneShot);

private:
    // Atomic: the timer's thread reads it while the owner may change it.
    std::atomic<std::uint64_t> m_interval{0};
    TimerThread m_thread;
    const bool m_oneShot;
};

// A timer that calls onTimer() once, one interval after start(), and whose
// thread then ends.
class OneShotTimer : public Timer {
public:
    OneShotTimer();
    ~OneShotTimer() override;
};

}  // namespace nimb
