// The shutdown service: supervises every UPS the monitor server reports and
// shuts this computer down when a connected UPS's countdown runs out.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <string>

#include "nimb/logger.h"
#include "nimb/object.h"
#include "nimb/thread.h"
#include "tessary/clientconf.h"
#include "tessary/ldclient.h"
#include "tessary/ldconfig.h"
#include "tessary/monit.h"

namespace tessary {

// Name of the service's log directory below the suite path. Inline, so that
// it is initialised before any static service object that includes this.
inline const std::string SHUTSVC_LOG_PATH = "log";
// Default log file name of the service.
inline const std::string SHUTSVC_LOG_FILENAME = "shutsvc.log";

class ShutService;

// The supervision timer: calls its service's onTimer() every period.
class ShutTimer : public nimb::Timer {
public:
    explicit ShutTimer(ShutService* owner);
    ~ShutTimer() override;

    void onTimer(nimb::Timer& timer) override;

private:
    ShutService* m_owner;
};

// The daemon's single service object. It owns the bindings to config.so and
// client.so, the client configuration, the last known data of every device
// and the supervision timer.
class ShutService : public nimb::Object {
public:
    // Creates the log directory and configures the "shutsvc" logger to write
    // fatal lines only, to <suite>/log/shutsvc.log.
    ShutService();
    ~ShutService() override;

    ShutService(const ShutService&) = delete;
    ShutService& operator=(const ShutService&) = delete;

    // Creates the log directory (mkdir -p through the shell; the outcome is
    // ignored).
    virtual void createLogPath();
    // The suite path + "log", with a trailing separator.
    virtual std::string getLogPath() const;
    // One supervision tick; runs on the timer thread every 3000 ms.
    virtual void onTimer();
    // Runs the user program of the triggering device, once per sequence.
    virtual void runProgram();
    // Suspends the computer to disk or shuts it down.
    virtual void doShutdown();
    // Reads the client configuration through config.so, connects through
    // client.so, switches to the client library's loggers and starts the
    // timer. Does nothing when running. Throws nimb::Exception on failure.
    virtual void start();
    // Stops the timer, restores the service's own logger, disconnects and
    // unloads client.so and forgets every device. Does nothing when stopped.
    virtual void stop();
    // Blocks until the service stops (after stop() from any thread or a
    // requestStop() from a signal handler); returns 0.
    virtual int exec();
    virtual bool isRunning() const;
    virtual nimb::Logger* logger() const;

    // Async-signal-safe: asks exec() to call stop() on its own thread.
    void requestStop() noexcept;

private:
    void resetSequence();
    void wake() noexcept;

    // Written by start()/stop() and read by exec() on another thread.
    std::atomic<bool> m_running{false};
    // The supervision state below is only touched by the timer thread while
    // the timer runs; start() and stop() touch it with the timer stopped.
    bool m_shuttingDown = false;
    bool m_waitingShutdown = false;
    bool m_programRun = false;
    bool m_resumed = false;
    uint64_t m_programStartTick = 0;
    std::string m_currentDevice;
    ShutTimer m_timer;
    LibClient m_client;
    LibConfig m_config;
    ClientConfig m_clientConfig;
    std::map<std::string, MonitData> m_data;
    nimb::Logger* m_log = nullptr;
    nimb::LoggerConfig m_logConfig;

    // Set by requestStop() in signal context; exec() acts on it.
    std::atomic<bool> m_stopRequested{false};
    // exec() sleeps on this pipe; requestStop() and stop() write a byte to it.
    int m_wakePipe[2] = {-1, -1};
};

}  // namespace tessary
