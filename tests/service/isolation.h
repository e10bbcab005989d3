// Runs the real shutsvc daemon in isolation, for the end-to-end tests and the
// daemon benchmark. The test process moves into a
// private mount namespace in which /etc (for tessary.conf), /sys/power and
// /var/lock are temporary folders and every shutdown command of the system is
// covered by a recorder; the daemon's PATH starts at a folder whose shutdown
// only records its arguments. Nothing outside the temporary folder changes.
#pragma once

#include <fcntl.h>
#include <grp.h>
#include <sched.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "nimb/json.h"
#include "tessary/device.h"
#include "tessary/devsettings.h"
#include "tests/files.h"

namespace e2e {

using support::readFile;
using support::writeFile;

inline bool exists(const std::string& path) {
    return std::filesystem::exists(path);
}

inline int countOf(const std::string& text, const std::string& what) {
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}

// Polls until done() holds or the time is up; generous limits keep this
// independent of the machine's load.
inline bool waitFor(const std::function<bool()>& done, int timeoutMs) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::milliseconds(timeoutMs);
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) {
            return done();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    return true;
}

inline std::string errnoText(const char* what) {
    return std::string(what) + ": " + std::strerror(errno);
}

// The private mount namespace shared by every test of one executable.
class Isolation {
public:
    static Isolation& instance() {
        static Isolation isolation;
        return isolation;
    }

    bool ready() const { return m_error.empty(); }
    const std::string& error() const { return m_error; }
    const std::string& root() const { return m_root; }
    // Where the daemon's /etc/tessary.conf really lives.
    std::string tessaryConf() const { return m_root + "/etc/tessary.conf"; }
    // Where the daemon's /sys/power/state really lives.
    std::string powerState() const { return m_root + "/power/state"; }
    // Where the daemon's /var/lock/shutsvc really lives.
    std::string lockFile() const { return m_root + "/lock/shutsvc"; }
    // Written by the recorder that covers the system's own shutdown commands.
    std::string realShutdownAttempts() const { return m_root + "/real-shutdown-attempts"; }

    // Makes a read-only bind mount of the power-state file, so that opening
    // it for writing fails; undone by writablePowerState().
    bool readOnlyPowerState() {
        return mount(powerState().c_str(), "/sys/power/state", nullptr, MS_BIND, nullptr) == 0 &&
               mount(nullptr, "/sys/power/state", nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY,
                     nullptr) == 0;
    }
    void writablePowerState() { umount2("/sys/power/state", MNT_DETACH); }

    // Covers /bin/sh with a shell under which the first "sh -c 'shutdown
    // now&'" fails with exit status 3; every other command line runs in the
    // real shell.
    bool shutdownShellFailsOnce() {
        const std::string realShell = m_root + "/real-sh", wrapper = m_root + "/failing-sh";
        writeFile(realShell, "", 0755);
        char resolved[PATH_MAX];
        if (realpath("/bin/sh", resolved) == nullptr ||
            mount(resolved, realShell.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            return false;
        }
        writeFile(wrapper,
                  "#!/bin/bash\nif [ \"$1\" = -c ] && [ \"$2\" = \"shutdown now&\" ] && mkdir \"" +
                      m_root + "/shell-failed\" 2>/dev/null; then exit 3; fi\nexec \"" + realShell +
                      "\" \"$@\"\n",
                  0755);
        return mount(wrapper.c_str(), resolved, nullptr, MS_BIND, nullptr) == 0;
    }

private:
    Isolation() {
        char pattern[] = "/tmp/shutsvc-e2e-XXXXXX";
        if (mkdtemp(pattern) == nullptr) {
            m_error = errnoText("mkdtemp");
            return;
        }
        m_root = pattern;
        if (unshare(CLONE_NEWNS) != 0) {
            m_error = errnoText(
                "cannot make a private mount namespace for the daemon (these tests must run as "
                "root); unshare(CLONE_NEWNS)");
            return;
        }
        if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0) {
            m_error = errnoText("cannot make the mounts private; mount");
            return;
        }
        if (!coverEtc() || !coverPower() || !coverLock() || !coverShutdownCommands()) {
            return;
        }
        // Daemonized grandchildren are re-parented to this process, so that the
        // tests can wait for them and read their exit status.
        prctl(PR_SET_CHILD_SUBREAPER, 1);
    }

    bool bind(const std::string& from, const std::string& onto) {
        if (mount(from.c_str(), onto.c_str(), nullptr, MS_BIND, nullptr) != 0) {
            m_error = errnoText(("cannot bind-mount " + from + " onto " + onto).c_str());
            return false;
        }
        return true;
    }

    // A folder of links to every entry of the real /etc, plus our own
    // tessary.conf, mounted over /etc.
    bool coverEtc() {
        const std::string real = m_root + "/etc-real", farm = m_root + "/etc";
        std::filesystem::create_directories(real);
        std::filesystem::create_directories(farm);
        if (!bind("/etc", real)) {
            return false;
        }
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(real, error)) {
            const std::string name = entry.path().filename();
            if (name != "tessary.conf") {
                std::filesystem::create_symlink(entry.path(), farm + "/" + name, error);
            }
            if (error) {
                break;
            }
        }
        if (error) {
            m_error = "cannot link the entries of /etc: " + error.message();
            return false;
        }
        writeFile(tessaryConf(), "");
        return bind(farm, "/etc");
    }

    bool coverPower() {
        std::filesystem::create_directories(m_root + "/power");
        writeFile(powerState(), "freeze mem\n");
        if (exists("/sys/power")) {
            return bind(m_root + "/power", "/sys/power");
        }
        // Without a power folder the whole of /sys is covered by one that has it.
        std::filesystem::create_directories(m_root + "/sys/power");
        return bind(m_root + "/sys", "/sys") && bind(m_root + "/power", "/sys/power");
    }

    bool coverLock() {
        std::filesystem::create_directories(m_root + "/lock");
        return bind(m_root + "/lock", "/var/lock");
    }

    // Whatever PATH a daemon ends up with, no shutdown command of the system
    // can be reached from this namespace.
    bool coverShutdownCommands() {
        const std::string recorder = m_root + "/refuse-shutdown";
        writeFile(recorder,
                  "#!/bin/sh\necho \"$@\" >> \"" + realShutdownAttempts() + "\"\nexit 1\n", 0755);
        std::set<std::string> covered;
        for (const char* dir :
             {"/sbin", "/usr/sbin", "/bin", "/usr/bin", "/usr/local/sbin", "/usr/local/bin"}) {
            for (const char* name : {"shutdown", "poweroff", "reboot", "halt"}) {
                char resolved[PATH_MAX];
                const std::string path = std::string(dir) + "/" + name;
                // Each real file once, however many links lead to it.
                if (realpath(path.c_str(), resolved) != nullptr &&
                    covered.insert(resolved).second && !bind(recorder, resolved)) {
                    return false;
                }
            }
        }
        return true;
    }

    std::string m_root;
    std::string m_error;
};

// The exit status of a wait status; 128 + the signal for a process that a
// signal ended, and -1 for one that did not end.
inline int exitCode(int status) {
    if (status == -1) {
        return -1;
    }
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

// One event of a scenario: at `at` seconds after the connection.
struct Event {
    double at;
    std::string device;  // empty: every device
    std::string event;
};

// A device of the simulated monitor server with its shutdown settings.
struct SimDevice {
    tessary::Device device;
    tessary::DeviceShutCfg shutCfg;
};

// A connected device on mains whose shutdown is enabled and runs `program`.
inline SimDevice simDevice(const std::string& id, const std::string& program = "",
                           unsigned shutTimer = 0, unsigned counterOpBattery = 1) {
    SimDevice sim;
    sim.device.id = id;
    sim.device.flags.connected = true;
    sim.shutCfg.cliShutEnabled = 1;
    sim.shutCfg.cliHibernate = 0;
    sim.shutCfg.cliRun = program;
    sim.shutCfg.cliShutTimer = shutTimer;
    sim.shutCfg.counterOpBattery = counterOpBattery;
    return sim;
}

inline std::string scenarioJson(const std::vector<SimDevice>& devices,
                                const std::vector<Event>& timeline,
                                const std::string& journal = "calls.log") {
    nimb::JsonArray deviceArray, events;
    for (const SimDevice& sim : devices) {
        deviceArray.append(
            nimb::JsonObject{{"device", sim.device.toJson()}, {"shutCfg", sim.shutCfg.toJson()}});
    }
    for (const Event& e : timeline) {
        nimb::JsonObject entry{{"at", e.at}, {"event", e.event}};
        if (!e.device.empty()) {
            entry.insert("device", nimb::JsonValue(e.device));
        }
        events.append(entry);
    }
    const nimb::JsonObject scenario{
        {"journal", journal}, {"devices", deviceArray}, {"timeline", events}};
    return nimb::JsonDocument(scenario).toJson(true);
}

// A suite directory of its own for one test: the daemon, both libraries, the
// simulated monitor as client.so, the INI configuration plug-in, a
// client.conf at TRACE level, a scenario, and a fake shutdown command.
class Suite {
public:
    explicit Suite(const std::string& name) {
        Isolation& iso = Isolation::instance();
        m_dir = iso.root() + "/" + name + "/";
        std::filesystem::create_directories(m_dir + "bin");
        std::filesystem::create_directories(m_dir + "daemon");
        // The daemon lives apart from the suite directory, so that it finds
        // its plug-ins only through /etc/tessary.conf.
        const std::string suiteDir = SHUTSVC_SUITE_DIR, pluginDir = SHUTSVC_PLUGIN_DIR;
        for (const auto& [from, to] : std::vector<std::pair<std::string, std::string>>{
                 {suiteDir + "/shutsvc", "daemon/shutsvc"},
                 {suiteDir + "/libnimb.so", "daemon/libnimb.so"},
                 {suiteDir + "/libtessary.so", "daemon/libtessary.so"},
                 {pluginDir + "/sim/client.so", "client.so"},
                 {pluginDir + "/ini/config.so", "config.so"}}) {
            std::filesystem::copy_file(from, m_dir + to,
                                       std::filesystem::copy_options::overwrite_existing);
        }
        logLevel("TRACE");
        writeFile(m_dir + "bin/shutdown",
                  "#!/bin/sh\necho \"$(date +%s%N) $*\" >> \"" + shutdownCalls() + "\"\n", 0755);
        writeFile(iso.tessaryConf(), "[TESSARY]\nPATH=" + m_dir + "\n");
        writeFile(iso.powerState(), "freeze mem\n");
        unlink(iso.lockFile().c_str());
        rmdir(iso.lockFile().c_str());
    }

    ~Suite() { killAll(); }

    const std::string& dir() const { return m_dir; }
    // Writes the client.conf with both loggers at the given level name.
    void logLevel(const std::string& level) {
        writeFile(m_dir + "client.conf",
                  "[shutsvc]\nweb.host=localhost\nweb.port=4470\n\n"
                  "[debug]\nmonitclient.filename=monitclient.log\nmonitclient.level=" +
                      level + "\nshutsvc.filename=shutsvc.log\nshutsvc.level=" + level + "\n");
    }
    std::string log() const { return readFile(m_dir + "log/shutsvc.log"); }
    std::string shutdownCalls() const { return m_dir + "shutdown.calls"; }
    int shutdownCount() const { return countOf(readFile(shutdownCalls()), "\n"); }
    std::string journal() const { return readFile(m_dir + "calls.log"); }
    std::string stderrText() const { return readFile(m_dir + "stderr.txt"); }

    void scenario(const std::vector<SimDevice>& devices, const std::vector<Event>& timeline,
                  const std::string& journal = "calls.log") {
        m_devices = devices;
        m_timeline = timeline;
        m_journal = journal;
        writeScenario();
    }
    // Appends an event `delay` seconds from now (counted from the launch of
    // the last daemon, which connects right after it starts).
    void eventNow(const std::string& device, const std::string& event, double delay = 0) {
        const double elapsed =
            std::chrono::duration<double>(std::chrono::steady_clock::now() - m_launched).count();
        m_timeline.push_back({elapsed + delay, device, event});
        writeScenario();
    }

    // Starts ./shutsvc with the given arguments; returns its process id.
    // forkless: the daemon runs as the user nobody, allowed no further
    // process, so that its every fork fails.
    pid_t launch(const std::vector<std::string>& args = {"--nodaemon"}, bool forkless = false) {
        m_launched = std::chrono::steady_clock::now();
        const std::string exe = m_dir + "daemon/shutsvc";
        std::vector<char*> argv{const_cast<char*>(exe.c_str())};
        for (const std::string& a : args) {
            argv.push_back(const_cast<char*>(a.c_str()));
        }
        argv.push_back(nullptr);
        // No sbin folder on the daemon's PATH: its shutdown is the recorder.
        const std::string path = m_dir + "bin:/usr/bin:/bin";
        const std::string errPath = m_dir + "stderr.txt";
        // The test process has no other thread, so the child may still allocate.
        const pid_t pid = fork();
        if (pid == 0) {
            const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0644);
            dup2(err, 1);
            dup2(err, 2);
            chdir("/");
            setenv("PATH", path.c_str(), 1);
            setenv("HOME", m_dir.c_str(), 1);
            if (forkless) {
                const rlimit none{0, 0};
                const uid_t nobody = 65534;
                if (setrlimit(RLIMIT_NPROC, &none) != 0 || setgroups(0, nullptr) != 0 ||
                    setgid(nobody) != 0 || setuid(nobody) != 0) {
                    _exit(126);
                }
            }
            // Set after any change of user, which would clear it.
            prctl(PR_SET_PDEATHSIG, SIGKILL);
            execv(exe.c_str(), argv.data());
            _exit(127);
        }
        m_pids.push_back(pid);
        return pid;
    }

    // Waits for the process to end; returns its wait status, or -1 when it
    // was still running after the time limit.
    int wait(pid_t pid, int timeoutMs = 20000) {
        int status = -1;
        const bool ended =
            waitFor([&] { return waitpid(pid, &status, WNOHANG) == pid; }, timeoutMs);
        return ended ? status : -1;
    }

    // Waits for any child to end -- this process is the subreaper of the
    // daemons that a launcher left behind -- and returns its process id and
    // wait status; {-1, -1} when none ended within the time limit.
    std::pair<pid_t, int> waitAny(int timeoutMs = 20000) {
        std::pair<pid_t, int> ended{-1, -1};
        waitFor([&] { return (ended.first = waitpid(-1, &ended.second, WNOHANG)) > 0; }, timeoutMs);
        return ended.first > 0 ? ended : std::make_pair(pid_t(-1), -1);
    }

    // The number of ticks that examined the devices so far.
    int ticks() const { return countOf(log(), "ShutService: <onTimer> status: {"); }
    bool ticksReach(int count, int timeoutMs) const {
        return waitFor([&] { return ticks() >= count; }, timeoutMs);
    }
    bool logHas(const std::string& text, int timeoutMs) const {
        return waitFor([&] { return log().find(text) != std::string::npos; }, timeoutMs);
    }
    bool shutdownCalled(int timeoutMs) const {
        return waitFor([&] { return shutdownCount() > 0; }, timeoutMs);
    }

    // Every process this suite started, and every daemon that holds its lock,
    // is killed and reaped.
    void killAll() {
        const std::string locked = readFile(Isolation::instance().lockFile());
        if (!locked.empty()) {
            m_pids.push_back(static_cast<pid_t>(std::atoi(locked.c_str())));
        }
        for (pid_t pid : m_pids) {
            if (pid > 1) {
                kill(pid, SIGKILL);
            }
        }
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        m_pids.clear();
    }

private:
    void writeScenario() {
        // Written beside and renamed, so that the plug-in never reads half a file.
        writeFile(m_dir + "simulator.json.new", scenarioJson(m_devices, m_timeline, m_journal));
        rename((m_dir + "simulator.json.new").c_str(), (m_dir + "simulator.json").c_str());
    }

    std::string m_dir;
    std::vector<pid_t> m_pids;
    std::vector<SimDevice> m_devices;
    std::vector<Event> m_timeline;
    std::string m_journal = "calls.log";
    std::chrono::steady_clock::time_point m_launched = std::chrono::steady_clock::now();
};

}  // namespace e2e
