#include "nimb/system.h"

#include <QString>

#include <cctype>
#include <initializer_list>

namespace nimb {

namespace {

const char* const PLATFORM_TEXTS[] = {
    "Unknown OS Platform",
    "Microsoft Windows 32 Platform",
    "Microsoft Windows NT Platform",
    "RedHat GNU/Linux Based Distro",
    "Debian GNU/Linux Based Distro",
    "Slackware GNU/Linux Based Distro",
    "Gentoo GNU/Linux Based Distro",
    "GNU/Linux Distro",
    "Apple MacOSX/Darwin Platform",
    "Sun/Oracle Solaris Based Unix",
    "FreeBSD Based Unix",
    "NetBSD Based Unix",
    "OpenBSD Based Unix",
    "Unix/POSIX OS Platform",
};

const char* const ARCH_TEXTS[] = {
    "unknown", "x86", "amd64", "ia64", "sparc", "sparc64", "mips", "alpha", "ppc", "arm", "arm64",
};

struct ArchNames {
    OsInfo::Arch arch;
    std::initializer_list<const char*> names;
};

// Tested in this order. The 32-bit-named "armv8" forms count as arm64 and
// "ppc64" as ppc; both are kept as they always were.
const ArchNames ARCH_NAMES[] = {
    {OsInfo::ARCH_X86, {"i386", "i486", "i586", "i686", "x86", "i86pc"}},
    {OsInfo::ARCH_AMD64, {"x86_64", "x64", "amd_64", "amd64", "em64", "em_64"}},
    {OsInfo::ARCH_IA64, {"ia64", "ia_64"}},
    {OsInfo::ARCH_SPARC, {"sun4c", "sun4d", "sun4m", "sparc"}},
    {OsInfo::ARCH_SPARC64, {"sun4u"}},
    {OsInfo::ARCH_MIPS, {"ip30", "ip27", "ip32", "r4", "r8", "r10", "mips"}},
    {OsInfo::ARCH_ALPHA, {"alpha"}},
    {OsInfo::ARCH_PPC, {"ppc", "ppc64"}},
    {OsInfo::ARCH_ARM,
     {"arm", "armv5te", "armv5tel", "armv5teb", "armv6", "armv6l", "armv6b", "armv7", "armv7l",
      "armv7b"}},
    {OsInfo::ARCH_ARM64, {"armv8", "armv8l", "armv8b", "arm64", "aarch64"}},
};

bool isBlankOrQuote(char c) {
    return std::isspace(static_cast<unsigned char>(c)) || c == '"' || c == '\'';
}

// text without surrounding blanks and quotes.
std::string stripBlanksAndQuotes(const std::string& text) {
    std::string::size_type begin = 0;
    std::string::size_type end = text.size();
    while (begin < end && isBlankOrQuote(text[begin]))
        ++begin;
    while (end > begin && isBlankOrQuote(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

}  // namespace

OsInfo::OsInfo(const std::string& name, const std::string& fullName, const std::string& version,
               const std::string& buildNumber, const std::string& servicePackName,
               const std::string& servicePackVersion, Platform platform, Arch arch)
    : m_name(name),
      m_fullName(fullName),
      m_version(version),
      m_buildNumber(buildNumber),
      m_servicePackName(servicePackName),
      m_servicePackVersion(servicePackVersion),
      m_platform(platform),
      m_arch(arch) {}

OsInfo::~OsInfo() = default;

void OsInfo::clear() { *this = OsInfo(); }

std::string OsInfo::archAsStr(int arch) {
    const int count = static_cast<int>(sizeof ARCH_TEXTS / sizeof ARCH_TEXTS[0]);
    return arch > 0 && arch < count ? ARCH_TEXTS[arch] : ARCH_TEXTS[0];
}

std::string OsInfo::platformAsStr(int platform) {
    const int count = static_cast<int>(sizeof PLATFORM_TEXTS / sizeof PLATFORM_TEXTS[0]);
    return platform > 0 && platform < count ? PLATFORM_TEXTS[platform] : PLATFORM_TEXTS[0];
}

std::string OsInfo::archAsStr() const { return archAsStr(m_arch); }

std::string OsInfo::platformAsStr() const { return platformAsStr(m_platform); }

bool OsInfo::isWindows() const {
    return m_platform == PLATFORM_WIN32 || m_platform == PLATFORM_WINNT;
}

bool OsInfo::isLinux() const {
    return m_platform >= PLATFORM_REDHAT && m_platform <= PLATFORM_LINUX;
}

bool OsInfo::isBsd() const {
    return m_platform >= PLATFORM_FREEBSD && m_platform <= PLATFORM_OPENBSD;
}

bool OsInfo::isSolaris() const { return m_platform == PLATFORM_SOLARIS; }

bool OsInfo::isMacOsX() const { return m_platform == PLATFORM_MACOSX; }

bool OsInfo::isUnix() const { return !isWindows(); }

bool OsInfo::isServer() const {
    return QString::fromUtf8(m_fullName.c_str()).contains(QLatin1String("server"),
                                                           Qt::CaseInsensitive);
}

bool OsInfo::is64Bits() const {
    return m_arch == ARCH_AMD64 || m_arch == ARCH_IA64 || m_arch == ARCH_SPARC64 ||
           m_arch == ARCH_ALPHA || m_arch == ARCH_ARM64;
}

bool OsInfo::is32Bits() const {
    return m_arch == ARCH_X86 || m_arch == ARCH_SPARC || m_arch == ARCH_MIPS ||
           m_arch == ARCH_PPC || m_arch == ARCH_ARM;
}

std::string OsInfo::toString() const {
    return "OsInfo: {name=" + m_name + ", fullName=" + m_fullName + ", version=" + m_version +
           ", buildNumber=" + m_buildNumber + ", servicePackName=" + m_servicePackName +
           ", servicePackVersion=" + m_servicePackVersion + ", platform=" + platformAsStr() +
           ", arch=" + archAsStr() + "}";
}

std::string System::getSysName(const std::string& fullName) {
    std::string::size_type digit = 0;
    while (digit < fullName.size() && !isDigit(fullName[digit]))
        ++digit;
    return stripBlanksAndQuotes(fullName.substr(0, digit));
}

std::string System::getSysVersion(const std::string& fullName) {
    std::string::size_type begin = 0;
    while (begin < fullName.size() && !isDigit(fullName[begin]))
        ++begin;
    std::string::size_type end = begin;
    while (end < fullName.size() && (isDigit(fullName[end]) || fullName[end] == '.'))
        ++end;
    return begin == end ? std::string("0.0") : fullName.substr(begin, end - begin);
}

OsInfo::Arch System::getSysArch(const std::string& machine) {
    std::string name = stripBlanksAndQuotes(machine);
    for (char& c : name)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    for (const ArchNames& row : ARCH_NAMES) {
        for (const char* candidate : row.names) {
            if (name == candidate)
                return row.arch;
        }
    }
    return OsInfo::ARCH_UNKNOWN;
}

OsInfo::Platform System::getSysPlatform(const std::string& fullName) {
    const QString upper = QString::fromUtf8(fullName.c_str()).toUpper();
    if (upper.contains(QLatin1String("DEBIAN")))
        return OsInfo::PLATFORM_DEBIAN;
    if (upper.contains(QLatin1String("REDHAT")))
        return OsInfo::PLATFORM_REDHAT;
    if (upper.contains(QLatin1String("SLACKWARE")))
        return OsInfo::PLATFORM_SLACKWARE;
    if (upper.contains(QLatin1String("GENTOO")))
        return OsInfo::PLATFORM_GENTOO;
    return getSysPlatformFromTools();
}

}  // namespace nimb
