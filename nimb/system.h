// Operating-system services: clock and sleeping, error texts, the
// executable's path, power control and the identification of the system.
#pragma once

#include "nimb/object.h"

#include <cstdint>
#include <string>

namespace nimb {

// What is known about the running operating system. A value type; the
// default value is an unknown system of unknown architecture.
class OsInfo : public Object {
public:
    enum Platform : int {
        PLATFORM_UNKNOWN = 0,
        PLATFORM_WIN32 = 1,
        PLATFORM_WINNT = 2,
        PLATFORM_REDHAT = 3,
        PLATFORM_DEBIAN = 4,
        PLATFORM_SLACKWARE = 5,
        PLATFORM_GENTOO = 6,
        PLATFORM_LINUX = 7,
        PLATFORM_MACOSX = 8,
        PLATFORM_SOLARIS = 9,
        PLATFORM_FREEBSD = 10,
        PLATFORM_NETBSD = 11,
        PLATFORM_OPENBSD = 12,
        PLATFORM_UNIX = 13,
    };

    enum Arch : int {
        ARCH_UNKNOWN = 0,
        ARCH_X86 = 1,
        ARCH_AMD64 = 2,
        ARCH_IA64 = 3,
        ARCH_SPARC = 4,
        ARCH_SPARC64 = 5,
        ARCH_MIPS = 6,
        ARCH_ALPHA = 7,
        ARCH_PPC = 8,
        ARCH_ARM = 9,
        ARCH_ARM64 = 10,
    };

    OsInfo() = default;
    OsInfo(const std::string& name, const std::string& fullName, const std::string& version,
           const std::string& buildNumber, const std::string& servicePackName,
           const std::string& servicePackVersion, Platform platform, Arch arch);
    OsInfo(const OsInfo&) = default;
    OsInfo& operator=(const OsInfo&) = default;
    ~OsInfo() override;

    // Back to the default value.
    void clear();

    // "Debian GNU/Linux" for the full name "Debian GNU/Linux 12 (bookworm)".
    const std::string& name() const { return m_name; }
    const std::string& fullName() const { return m_fullName; }
    // "12", "22.04.3"; "0.0" when the full name holds no version.
    const std::string& version() const { return m_version; }
    // Kernel release and kernel version text, joined with a blank.
    const std::string& buildNumber() const { return m_buildNumber; }
    const std::string& servicePackName() const { return m_servicePackName; }
    const std::string& servicePackVersion() const { return m_servicePackVersion; }
    Platform platform() const { return m_platform; }
    Arch arch() const { return m_arch; }

    // "amd64", "arm64", ...; "unknown" for ARCH_UNKNOWN and any value out of range.
    std::string archAsStr() const;
    // "Debian GNU/Linux Based Distro", ...; "Unknown OS Platform" out of range.
    std::string platformAsStr() const;

    bool isWindows() const;   // PLATFORM_WIN32 or PLATFORM_WINNT
    bool isLinux() const;     // PLATFORM_REDHAT to PLATFORM_LINUX
    bool isBsd() const;       // PLATFORM_FREEBSD to PLATFORM_OPENBSD
    bool isSolaris() const;   // PLATFORM_SOLARIS
    bool isMacOsX() const;    // PLATFORM_MACOSX
    bool isUnix() const;      // anything but Windows, an unknown platform included
    bool isServer() const;    // the full name says "server", in any letter case
    bool is64Bits() const;    // amd64, ia64, sparc64, alpha, arm64
    bool is32Bits() const;    // x86, sparc, mips, ppc, arm

    // "OsInfo: {name=..., fullName=..., version=..., buildNumber=...,
    // servicePackName=..., servicePackVersion=..., platform=<text>, arch=<text>}"
    std::string toString() const override;

    static std::string archAsStr(int arch);
    static std::string platformAsStr(int platform);

private:
    std::string m_name;
    std::string m_fullName;
    std::string m_version;
    std::string m_buildNumber;
    std::string m_servicePackName;
    std::string m_servicePackVersion;
    Platform m_platform = PLATFORM_UNKNOWN;
    Arch m_arch = ARCH_UNKNOWN;
};

// Static operating-system services.
class System : public Object {
public:
    // Wall-clock milliseconds since the epoch.
    static std::uint64_t getSystemTick();
    // Wall-clock microseconds since the epoch.
    static std::uint64_t usGetSystemTick();
    // Sleeps the calling thread for ms milliseconds (us microseconds); a
    // signal does not cut the sleep short.
    static void delay(unsigned long ms);
    static void usDelay(unsigned long long us);

    // The calling thread's errno.
    static unsigned long getOSLastError();
    // The system's text for errno / for code, without surrounding blanks.
    static std::string getOSErrorMessage();
    static std::string getOSErrorMessage(unsigned long code);

    // Absolute path of the running executable. Throws PathNotFoundException
    // (-32013) "Error getting executable filename" when it cannot be read.
    static std::string getExeFileName();
    // True when the real, otherwise the effective, user id is 0.
    static bool userIsAdmin();

    // True when the power-state file lists "disk". Throws
    // FileNotOpenException (-32012) when the file cannot be opened.
    static bool supportSuspendToDisk();
    // Writes "disk" to the power-state file; returns after the system has
    // resumed. Throws SystemException (-305) when not supported, and
    // FileNotOpenException / WriteFileException (-32012) on file failures.
    static void suspendToDisk();
    // Runs "shutdown now&" ("shutdown -r now&") through the shell, the command
    // found through PATH; returns as soon as the command has been started.
    // Throws SystemException (-305) when the shell cannot be run or fails.
    static void systemShutdown();
    static void systemReboot();

    // The identification of the running system, built on the first call and
    // kept for later calls. Throws SystemException (-305) when uname fails.
    static OsInfo getOsInfo();

    // The steps of the identification, each run afresh on every call.
    // The distribution's full name: the first line of "lsb_release -ds", else
    // the first readable release file; "" when nothing answers.
    static std::string getSysFullName();
    // Kernel release and version, joined with a blank.
    static std::string getSysBuild();
    // The architecture of the machine name uname reports.
    static OsInfo::Arch getSysArch();
    // The platform named by the full name, else the one whose package tool
    // answers first (emerge, installpkg, dpkg, rpm), else PLATFORM_LINUX.
    static OsInfo::Platform getSysPlatform(const std::string& fullName);
    // The text of fullName before its first digit, without blanks and quotes.
    static std::string getSysName(const std::string& fullName);
    // The run of digits and points starting at the first digit; "0.0" when
    // there is no digit.
    static std::string getSysVersion(const std::string& fullName);
    // The architecture of a machine name as uname reports it ("x86_64",
    // "AArch64"); case, surrounding blanks and quotes do not matter.
    static OsInfo::Arch getSysArch(const std::string& machine);

private:
    // The platform half of getSysPlatform: the package-tool probes.
    static OsInfo::Platform getSysPlatformFromTools();
};

}  // namespace nimb
