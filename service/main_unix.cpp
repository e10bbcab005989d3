// The shutsvc daemon: finds the suite directory, detaches from the terminal
// unless told "--nodaemon", holds the lock file and runs the service until
// SIGTERM.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "nimb/coreapp.h"
#include "nimb/file.h"
#include "nimb/logger.h"
#include "nimb/string.h"
#include "nimb/system.h"
#include "service/shutsvc.h"
#include "tessary/config.h"

namespace {

const bool coreAppCreated = nimb::ensureCoreApplication() != nullptr;

// The one service, alive for the whole process; its destructor stops it.
tessary::ShutService svc;
// The logger of main() and daemonize(); it stays the one the service
// constructor configured, whatever loggers the service switches to later.
nimb::Logger* logger = svc.logger();

const char LOCK_FILE[] = "/var/lock/shutsvc";

}  // namespace

// SIGTERM asks the service to stop. Only async-signal-safe work happens here:
// exec() wakes up and calls stop() on the main thread.
void signal_handler(int signal) {
    if (signal == SIGTERM) {
        svc.requestStop();
    }
}

// Detaches from the terminal (unless already a child of init), takes the lock
// that keeps a second instance out and installs the signal dispositions.
// Returns in the process that is to run the service; ends every other.
void daemonize() {
    if (getppid() != 1) {
        const pid_t pid = fork();
        if (pid < 0) {
            logger->fatal("<ShutService> deamonize: fork error <" +
                          nimb::System::getOSErrorMessage() + ">");
            exit(1);
        }
        if (pid > 0) {
            exit(0);
        }
        setsid();
    }
    const int lock = open(LOCK_FILE, O_RDWR | O_CREAT, 0640);
    if (lock < 0) {
        logger->trace(std::string("<ShutService> deamonize: can't open lock file <") + LOCK_FILE +
                      ">.");
        exit(1);
    }
    if (lockf(lock, F_TLOCK, 0) < 0) {
        logger->trace("<ShutService> deamonize: another instance exists.");
        exit(0);
    }
    // The descriptor stays open so that the lock lasts as long as the process;
    // the file is not truncated, a longer earlier content keeps its tail.
    const std::string pid = nimb::String::intToStr(getpid(), 0, '0');
    const ssize_t ignored = write(lock, pid.data(), pid.size());
    (void)ignored;

    signal(SIGTSTP, SIG_IGN);
    signal(SIGTTOU, SIG_IGN);
    signal(SIGTTIN, SIG_IGN);
    signal(SIGTERM, signal_handler);
}

int main(int argc, const char** argv) {
    (void)coreAppCreated;
    nimb::File::setCurDir(tessary::TesConfig::getTessaryPath());

    const bool foreground = argc > 1 && nimb::String::toLower(argv[1]) == "--nodaemon";
    if (!foreground) {
        daemonize();
    }
    try {
        svc.start();
    } catch (nimb::Exception& e) {
        logger->fatal(e.message());
        return 1;
    }
    return svc.exec();
}
