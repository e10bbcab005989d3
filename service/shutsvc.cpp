#include "service/shutsvc.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "nimb/file.h"
#include "nimb/process.h"
#include "nimb/string.h"
#include "nimb/system.h"
#include "tessary/config.h"
#include "tessary/monitconf.h"

namespace tessary {

namespace {

// The supervision period.
constexpr unsigned long TICK_MS = 3000;
// How long the user program may hold up the tick that launches it.
constexpr unsigned long PROGRAM_WAIT_MS = 1000;

std::string prefix(const char* operation) {
    return std::string("ShutService: <") + operation + "> ";
}

}  // namespace

ShutTimer::ShutTimer(ShutService* owner) : m_owner(owner) {}

ShutTimer::~ShutTimer() { stop(); }

void ShutTimer::onTimer(nimb::Timer&) { m_owner->onTimer(); }

ShutService::ShutService() : m_timer(this) {
    // The pipe lets a signal handler wake exec() without doing anything that
    // is not async-signal-safe.
    if (pipe2(m_wakePipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        m_wakePipe[0] = m_wakePipe[1] = -1;
    }
    const std::string logDir = nimb::File::includePathDelimiter(getLogPath());
    createLogPath();
    m_logConfig.level = nimb::LogLevel(5);
    m_logConfig.output = nimb::LogOutput(2);
    m_logConfig.filename = logDir + SHUTSVC_LOG_FILENAME;
    m_log = nimb::Logger::getLogger("shutsvc");
    m_log->configure(m_logConfig);
}

ShutService::~ShutService() {
    stop();
    for (int fd : m_wakePipe) {
        if (fd >= 0) {
            close(fd);
        }
    }
}

std::string ShutService::getLogPath() const {
    return nimb::File::includePathDelimiter(TesConfig::getTessaryPath() + SHUTSVC_LOG_PATH);
}

void ShutService::createLogPath() {
    const std::string command =
        "mkdir -p \"" + nimb::File::includePathDelimiter(getLogPath()) + "\"";
    const int ignored = std::system(command.c_str());
    (void)ignored;
}

void ShutService::resetSequence() {
    m_shuttingDown = false;
    m_waitingShutdown = false;
    m_programRun = false;
    m_resumed = false;
    m_programStartTick = 0;
    m_currentDevice.clear();
}

void ShutService::start() {
    if (isRunning()) {
        return;
    }
    resetSequence();
    const std::string logDir = nimb::File::includePathDelimiter(getLogPath());
    createLogPath();
    const std::string p = prefix("start");

    Url url;
    try {
        // config.so is loaded only for as long as it takes to read the client
        // configuration.
        m_config.load(TesConfig::getTessaryPath() + "config.so");
        m_config.openClientConfig();
        m_config.getClientConfig(m_clientConfig);
        m_config.closeClientConfig();
        m_config.unload();

        m_client.load(TesConfig::getTessaryPath() + "client.so");
        url.host = m_clientConfig.shutSvc.webHost;
        url.port = m_clientConfig.shutSvc.webPort;
        static_cast<ClientManagerBase&>(m_client).start(url);
    } catch (nimb::Exception& e) {
        m_log->fatal(p + "Error: " + e.message());
        throw;
    }

    // From here on the service writes through the client library's loggers;
    // a library that hands out none leaves the service on its own.
    const ClientLoggerConfig& loggers = m_clientConfig.logger;
    nimb::Logger* monitClient = m_client.logger("monitclient");
    m_log = monitClient ? monitClient : nimb::Logger::getLogger("monitclient");
    m_logConfig.filename = logDir + loggers.monitClientFilename;
    m_logConfig.level = loggers.monitClientLevel;
    m_log->configure(m_logConfig);
    nimb::Logger* shutSvc = m_client.logger("shutsvc");
    m_log = shutSvc ? shutSvc : nimb::Logger::getLogger("shutsvc");
    m_logConfig.filename = logDir + loggers.shutSvcFilename;
    m_logConfig.level = loggers.shutSvcLevel;
    m_log->configure(m_logConfig);

    m_log->trace(p + "Client connected at: <" + url.url() + ">");
    m_timer.start(TICK_MS);
    m_running = true;
}

void ShutService::stop() {
    if (!isRunning()) {
        return;
    }
    const std::string p = prefix("stop");
    // The timer is stopped and joined first, so that no tick can run inside
    // the client library while it is unloaded or use the data being cleared.
    m_timer.stop();
    m_log = nimb::Logger::getLogger("shutsvc");
    m_log->configure(m_logConfig);
    m_client.unload();
    m_data.clear();
    m_log->trace(p + "Client disconnected");
    resetSequence();
    m_running = false;
    wake();
}

void ShutService::requestStop() noexcept {
    m_stopRequested = true;
    wake();
}

void ShutService::wake() noexcept {
    if (m_wakePipe[1] >= 0) {
        const char byte = 1;
        // A full pipe already holds a wake-up; nothing is lost.
        const ssize_t ignored = write(m_wakePipe[1], &byte, 1);
        (void)ignored;
    }
}

int ShutService::exec() {
    // Waits on the pipe instead of polling: the process sleeps until a stop.
    for (;;) {
        if (m_stopRequested.exchange(false)) {
            stop();
        }
        if (!isRunning()) {
            return 0;
        }
        pollfd wait{m_wakePipe[0], POLLIN, 0};
        if (poll(&wait, 1, m_wakePipe[0] >= 0 ? -1 : 1) > 0) {
            char drain[64];
            while (read(m_wakePipe[0], drain, sizeof drain) > 0) {
            }
        }
    }
}

bool ShutService::isRunning() const { return m_running; }

nimb::Logger* ShutService::logger() const { return m_log; }

void ShutService::onTimer() {
    if (m_shuttingDown) {
        return;
    }
    if (m_waitingShutdown) {
        // The user program has had its chance; wait out cliShutTimer seconds
        // from its launch without asking the monitor for anything.
        const uint32_t delay = static_cast<uint32_t>(m_data[m_currentDevice].shutCfg.cliShutTimer) * 1000u;
        if (delay == 0 || nimb::System::getSystemTick() - m_programStartTick > delay) {
            doShutdown();
        }
        return;
    }
    const std::string p = prefix("onTimer");

    std::map<std::string, Device> devices;
    try {
        devices = m_client.devices();
    } catch (nimb::Exception& e) {
        m_log->error(p + "Error calling devices in libCLient: " + e.message());
        return;
    }
    if (devices.empty()) {
        return;
    }
    try {
        for (const auto& [id, device] : devices) {
            MonitData& entry = m_data[id];
            entry.actualState = device;
            entry.actualRegressive = m_client.counter(id.c_str());
            entry.shutCfg = m_client.devShutdownConfig(id.c_str());
        }
    } catch (nimb::Exception& e) {
        m_log->error(p + "Error getting device info: " + e.message());
        m_data.clear();
        return;
    }

    // Devices the server no longer lists keep their last entry and still
    // take part: the first entry in id order that meets the condition wins.
    // The texts of the trace lines are only made when they will be written.
    const bool tracing = m_log->getConfig().level <= nimb::TRACE;
    for (const auto& [id, entry] : m_data) {
        const Device& device = entry.actualState;
        const Regressive& regressive = entry.actualRegressive;
        if (tracing) {
            m_log->trace(p + "status: {" + device.toStr() + "}");
            m_log->trace(p + "regressive: {" + regressive.toStr() + "}");
        }
        const bool trigger =
            regressive.value() == 0 && device.flags.connected && !device.flags.opStartup;
        if (!trigger) {
            m_resumed = false;
            continue;
        }
        if (m_resumed) {
            // The device behind the last suspend to disk must not trigger
            // again before some device has been seen outside the condition.
            continue;
        }
        m_currentDevice = id;
        runProgram();
        return;
    }
}

void ShutService::runProgram() {
    if (m_shuttingDown) {
        return;
    }
    const DeviceShutCfg& cfg = m_data[m_currentDevice].shutCfg;
    if (cfg.cliShutEnabled == 0) {
        return;
    }
    if (m_programRun || cfg.cliRun.empty()) {
        // With no program run since start() the start tick is still 0, so
        // the wait for cliShutTimer is over at the next tick.
        m_waitingShutdown = true;
        return;
    }
    m_programRun = true;
    m_programStartTick = nimb::System::getSystemTick();
    try {
        const int result = nimb::Process::createNewAndWait(cfg.cliRun, PROGRAM_WAIT_MS);
        if (result < 0) {
            throw nimb::TimeoutException("Timeout running command.", nimb::ERR_TIMEOUT);
        }
        if (result > 0) {
            throw nimb::SystemException(
                "Fail running command. Code: " + nimb::String::intToStr(result), nimb::ERR_SYSTEM);
        }
    } catch (nimb::Exception&) {
        // The program's outcome never changes the course of the shutdown.
    }
    m_waitingShutdown = true;
}

void ShutService::doShutdown() {
    m_shuttingDown = true;
    const std::string p = prefix("doShutdown");
    m_resumed = false;
    const DeviceShutCfg cfg = m_data[m_currentDevice].shutCfg;

    if (cfg.cliHibernate != 0) {
        bool supported = false;
        try {
            supported = nimb::System::supportSuspendToDisk();
        } catch (...) {
            // An unreadable power-state file means no suspend to disk.
        }
        if (!supported) {
            m_log->trace(p + "Suspend to disk not supported.");
        } else {
            m_log->trace(p + "Trying suspend to disk...");
            try {
                nimb::System::suspendToDisk();
                m_resumed = true;
                m_log->trace(p + "Suspend to disk ok.");
            } catch (nimb::Exception& e) {
                m_log->trace(p + "Suspend to disk failed: " + e.message());
            }
        }
    }
    if (m_resumed) {
        // The computer slept and woke up again: supervise afresh.
        m_programRun = false;
        m_shuttingDown = false;
        m_waitingShutdown = false;
        m_currentDevice.clear();
        m_data.clear();
        return;
    }
    m_log->trace(p + "System shutdown");
    try {
        nimb::System::systemShutdown();
    } catch (nimb::Exception& e) {
        m_log->error(p + "Shutdown failed: " + e.message());
        m_programRun = false;
        m_shuttingDown = false;
        m_waitingShutdown = false;
        m_currentDevice.clear();
        m_data.clear();
    }
}

}  // namespace tessary
