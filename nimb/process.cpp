#include "nimb/process.h"

namespace nimb {

namespace {

void requireCommandLine(const char* cmdline) {
    if (!cmdline || !*cmdline)
        throw InvalidArgumentException("Empty \"cmdline\" argument.", ERR_INVALID_ARGUMENT);
}

}  // namespace

int Process::createNew(const char* cmdline) { return createNew(cmdline, 0); }

int Process::createNew(const std::string& cmdline) { return createNew(cmdline.c_str(), 0); }

int Process::createNew(const char* cmdline, int flags) {
    requireCommandLine(cmdline);
    return spawn(cmdline, flags);
}

int Process::createNew(const std::string& cmdline, int flags) {
    return createNew(cmdline.c_str(), flags);
}

int Process::createNewAndWait(const char* cmdline, unsigned long timeoutMs) {
    return createNewAndWait(cmdline, 0, timeoutMs);
}

int Process::createNewAndWait(const std::string& cmdline, unsigned long timeoutMs) {
    return createNewAndWait(cmdline.c_str(), 0, timeoutMs);
}

int Process::createNewAndWait(const char* cmdline, int flags, unsigned long timeoutMs) {
    requireCommandLine(cmdline);
    const int pid = spawn(cmdline, flags);
    return pid < 0 ? -1 : waitFor(pid, timeoutMs);
}

int Process::createNewAndWait(const std::string& cmdline, int flags, unsigned long timeoutMs) {
    return createNewAndWait(cmdline.c_str(), flags, timeoutMs);
}

}  // namespace nimb
