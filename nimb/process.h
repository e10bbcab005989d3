// Child processes that run a shell command line.
#pragma once

#include "nimb/object.h"

#include <string>

namespace nimb {

// Static operations that run cmdline as "/bin/sh -c cmdline" in a child
// process with the caller's environment.
class Process : public Object {
public:
    // flags: NEW_SESSION makes the child call setsid() before the command
    // runs, detaching it from the caller's session; other values do nothing.
    enum Flags : int { NEW_SESSION = 1 };

    // Starts the child and returns its process id at once, without waiting;
    // the caller may reap it with waitpid. Throws InvalidArgumentException
    // (-202) for an empty command line and SystemException (-305) when fork fails.
    static int createNew(const char* cmdline);
    static int createNew(const std::string& cmdline);
    static int createNew(const char* cmdline, int flags);
    static int createNew(const std::string& cmdline, int flags);

    // Starts the child and waits for it at most timeoutMs milliseconds.
    // Returns its exit code (0 to 255), or the number of the signal that
    // ended it, or -1 when it was still running at the time limit: the child
    // is then left running, not killed. A time limit of 0 checks once.
    // Throws InvalidArgumentException (-202) for an empty command line and
    // SystemException (-305) when fork or waitpid fails.
    static int createNewAndWait(const char* cmdline, unsigned long timeoutMs);
    static int createNewAndWait(const std::string& cmdline, unsigned long timeoutMs);
    static int createNewAndWait(const char* cmdline, int flags, unsigned long timeoutMs);
    static int createNewAndWait(const std::string& cmdline, int flags, unsigned long timeoutMs);

private:
    // The platform half: fork, optional setsid, exec of the shell. Returns the
    // child's process id in the caller.
    static int spawn(const char* cmdline, int flags);
    // The platform half of the wait loop.
    static int waitFor(int pid, unsigned long timeoutMs);
};

}  // namespace nimb
