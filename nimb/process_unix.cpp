#include "nimb/process.h"
#include "nimb/system.h"

#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace nimb {

namespace {

// The exit code, the number of the ending signal, or -1 while the child runs.
int decodeStatus(bool ended, int status) {
    if (!ended)
        return -1;
    if (WIFEXITED(status))
        return WEXITSTATUS(status);
    if (WIFSIGNALED(status))
        return WTERMSIG(status);
    return -1;
}

}  // namespace

int Process::spawn(const char* cmdline, int flags) {
    // Built before the fork so that the child only calls setsid and execve.
    char shell[] = "sh";
    char command[] = "-c";
    char* argv[] = {shell, command, const_cast<char*>(cmdline), nullptr};

    const pid_t pid = fork();
    if (pid == -1) {
        const int error = errno;
        throw SystemException("Error in fork(): " + System::getOSErrorMessage(error), ERR_SYSTEM);
    }
    if (pid == 0) {
        if (flags == NEW_SESSION)
            setsid();
        execve("/bin/sh", argv, environ);
        // Only reached when the shell cannot be run. The failure is thrown in
        // the child, into its copy of the caller, as the library always did.
        const int error = errno;
        throw SystemException("Error in execve(): " + System::getOSErrorMessage(error), ERR_SYSTEM);
    }
    return static_cast<int>(pid);
}

int Process::waitFor(int pid, unsigned long timeoutMs) {
    const std::uint64_t start = System::getSystemTick();
    // waitpid fills status only once the child has ended; until then the
    // child counts as running, whatever the word holds.
    int status = 0;
    bool ended = false;
    for (;;) {
        const pid_t reported = waitpid(static_cast<pid_t>(pid), &status, WNOHANG);
        if (reported == -1) {
            const int error = errno;
            throw SystemException("Error in waitpid(): " + System::getOSErrorMessage(error),
                                  ERR_SYSTEM);
        }
        if (reported == static_cast<pid_t>(pid))
            ended = true;
        if (timeoutMs == 0 || System::getSystemTick() - start > timeoutMs)
            return decodeStatus(ended, status);
        System::delay(1);
        const int result = decodeStatus(ended, status);
        if (result != -1)
            return result;
    }
}

}  // namespace nimb
