#include "nimb/system.h"
#include "nimb/file.h"
#include "nimb/system_testing.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <fstream>
#include <sys/time.h>
#include <sys/utsname.h>
#include <unistd.h>

namespace nimb {

namespace {

const char* const POWER_STATE_PATH = "/sys/power/state";

// Changed only through the test-only functions of nimb/system_testing.h.
std::string g_powerStatePath = POWER_STATE_PATH;
std::string g_releaseFileRoot;

// strerror_r comes in two flavours; each overload picks the text of one.
[[maybe_unused]] const char* errorText(int, const char* buffer) { return buffer; }
[[maybe_unused]] const char* errorText(const char* text, const char*) { return text; }

std::string trimmed(const std::string& text, const char* junk = " \t\r\n\v\f") {
    const std::string::size_type begin = text.find_first_not_of(junk);
    if (begin == std::string::npos)
        return std::string();
    return text.substr(begin, text.find_last_not_of(junk) - begin + 1);
}

const char* const BLANKS_AND_QUOTES = " \t\r\n\v\f\"'";

// Runs command through the shell and keeps the first line it prints in
// line; false when it prints nothing.
bool firstOutputLine(const char* command, std::string& line) {
    line.clear();
    FILE* pipe = popen(command, "r");
    if (!pipe)
        return false;
    char buffer[1024];
    const bool answered = fgets(buffer, sizeof buffer, pipe) != nullptr;
    if (answered)
        line = buffer;
    // Drain the rest so that the command is not cut off by a broken pipe.
    while (fgets(buffer, sizeof buffer, pipe)) {
    }
    pclose(pipe);
    return answered;
}

// The first line of a release file, without the escapes of a login banner
// ("\n", "\l"), blanks and quotes; "" when the file cannot be read.
std::string releaseFileLine(const std::string& path) {
    std::ifstream in(g_releaseFileRoot + path);
    std::string line;
    if (!in || !std::getline(in, line))
        return std::string();
    std::string text;
    for (std::string::size_type i = 0; i < line.size(); ++i) {
        if (line[i] == '\\' && i + 1 < line.size())
            ++i;
        else
            text += line[i];
    }
    return trimmed(text, BLANKS_AND_QUOTES);
}

void runPowerCommand(const char* command, const char* what) {
    const int rc = std::system(command);
    if (rc < 0) {
        const int error = errno;
        throw SystemException(std::string(what) + " invocation error <" + command +
                                  ">: " + System::getOSErrorMessage(error),
                              ERR_SYSTEM);
    }
    if (rc > 0)
        throw SystemException(std::string(what) + " invocation error <" + command +
                                  ">. Code: " + std::to_string(rc),
                              ERR_SYSTEM);
}

[[noreturn]] void throwPowerStateOpenError() {
    const int error = errno;
    throw FileNotOpenException("Error opening <" + g_powerStatePath +
                                   ">: " + System::getOSErrorMessage(error),
                               ERR_FILE_NOT_OPEN);
}

}  // namespace

namespace testing {

void setPowerStatePath(const std::string& path) {
    g_powerStatePath = path.empty() ? std::string(POWER_STATE_PATH) : path;
}

std::string powerStatePath() { return g_powerStatePath; }

void setReleaseFileRoot(const std::string& root) {
    g_releaseFileRoot = root == "/" ? std::string() : root;
}

}  // namespace testing

std::uint64_t System::getSystemTick() {
    struct timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000u +
           static_cast<std::uint64_t>(now.tv_usec) / 1000u;
}

std::uint64_t System::usGetSystemTick() {
    struct timeval now;
    gettimeofday(&now, nullptr);
    return static_cast<std::uint64_t>(now.tv_sec) * 1000000u +
           static_cast<std::uint64_t>(now.tv_usec);
}

void System::delay(unsigned long ms) {
    usDelay(static_cast<unsigned long long>(ms) * 1000u);
}

void System::usDelay(unsigned long long us) {
    struct timespec wanted;
    wanted.tv_sec = static_cast<time_t>(us / 1000000u);
    wanted.tv_nsec = static_cast<long>(us % 1000000u) * 1000L;
    struct timespec left;
    // A signal handler interrupts nanosleep; sleep on for what is left.
    while (nanosleep(&wanted, &left) == -1 && errno == EINTR)
        wanted = left;
}

unsigned long System::getOSLastError() { return static_cast<unsigned long>(errno); }

std::string System::getOSErrorMessage() { return getOSErrorMessage(getOSLastError()); }

std::string System::getOSErrorMessage(unsigned long code) {
    char buffer[256] = {};
    return trimmed(errorText(strerror_r(static_cast<int>(code), buffer, sizeof buffer), buffer));
}

std::string System::getExeFileName() {
    for (const char* link : {"/proc/self/exe", "/proc/curproc/file"}) {
        char buffer[PATH_MAX + 1];
        const ssize_t length = readlink(link, buffer, PATH_MAX);
        if (length <= 0)
            continue;
        const std::string path(buffer, static_cast<std::string::size_type>(length));
        return path[0] == '/' ? path : File::getCurDir() + path;
    }
    throw PathNotFoundException("Error getting executable filename", ERR_PATH_NOT_FOUND);
}

bool System::userIsAdmin() { return getuid() == 0 || geteuid() == 0; }

bool System::supportSuspendToDisk() {
    const int fd = open(g_powerStatePath.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        throwPowerStateOpenError();
    std::string states;
    char chunk[2048];
    ssize_t count;
    while ((count = read(fd, chunk, sizeof chunk)) > 0 ||
           (count < 0 && errno == EINTR)) {
        if (count > 0)
            states.append(chunk, static_cast<std::string::size_type>(count));
    }
    close(fd);
    return !states.empty() && states.find("disk") != std::string::npos;
}

void System::suspendToDisk() {
    if (!supportSuspendToDisk())
        throw SystemException("Error: Suspend to Disk not supported.", ERR_SYSTEM);
    const int fd = open(g_powerStatePath.c_str(), O_RDWR | O_CLOEXEC);
    if (fd < 0)
        throwPowerStateOpenError();
    // Returns once the system has resumed.
    const ssize_t written = write(fd, "disk", 4);
    const int error = errno;
    close(fd);
    if (written <= 0)
        throw WriteFileException("Error writing <" + g_powerStatePath +
                                     ">: " + getOSErrorMessage(error),
                                 ERR_FILE_NOT_OPEN);
}

void System::systemShutdown() { runPowerCommand("shutdown now&", "Shutdown"); }

void System::systemReboot() { runPowerCommand("shutdown -r now&", "Reboot"); }

OsInfo System::getOsInfo() {
    static const OsInfo info = [] {
        struct utsname uts;
        if (uname(&uts) != 0)
            throw SystemException("Error calling uname().", ERR_SYSTEM);
        const std::string fullName = getSysFullName();
        return OsInfo(getSysName(fullName), fullName, getSysVersion(fullName), getSysBuild(),
                      std::string(), std::string(), getSysPlatform(fullName), getSysArch());
    }();
    return info;
}

std::string System::getSysFullName() {
    std::string line;
    firstOutputLine("lsb_release -ds 2>/dev/null", line);
    const std::string described = trimmed(line, BLANKS_AND_QUOTES);
    if (!described.empty())
        return described;
    struct ReleaseFile {
        const char* path;
        const char* prefix;
    };
    static const ReleaseFile FILES[] = {
        {"/etc/issue", ""},
        {"/etc/debian_version", "Debian GNU/Linux "},
        {"/etc/slackware-version", ""},
        {"/etc/redhat_version", "RedHat Linux "},
        {"/etc/redhat-release", ""},
        {"/etc/mandrake-release", ""},
        {"/etc/conectiva-release", ""},
        {"/etc/gentoo-release", ""},
    };
    for (const ReleaseFile& file : FILES) {
        const std::string line = releaseFileLine(file.path);
        if (!line.empty())
            return file.prefix + line;
    }
    return std::string();
}

std::string System::getSysBuild() {
    struct utsname uts;
    if (uname(&uts) != 0)
        throw SystemException("Error calling uname().", ERR_SYSTEM);
    return std::string(uts.release) + " " + uts.version;
}

OsInfo::Arch System::getSysArch() {
    struct utsname uts;
    if (uname(&uts) != 0)
        throw SystemException("Error calling uname().", ERR_SYSTEM);
    return getSysArch(std::string(uts.machine));
}

OsInfo::Platform System::getSysPlatformFromTools() {
    struct Probe {
        const char* command;
        OsInfo::Platform platform;
    };
    static const Probe PROBES[] = {
        {"emerge --version 2>/dev/null", OsInfo::PLATFORM_GENTOO},
        {"installpkg 2>/dev/null", OsInfo::PLATFORM_SLACKWARE},
        {"dpkg --version 2>/dev/null", OsInfo::PLATFORM_DEBIAN},
        {"rpm --version 2>/dev/null", OsInfo::PLATFORM_REDHAT},
    };
    std::string line;
    for (const Probe& probe : PROBES) {
        if (firstOutputLine(probe.command, line))
            return probe.platform;
    }
    return OsInfo::PLATFORM_LINUX;
}

}  // namespace nimb
