// Test-only controls of nimb::System. Only unit tests include this header;
// the daemon and the plug-ins never call these functions.
#pragma once

#include <string>

namespace nimb {
namespace testing {

// Points System::supportSuspendToDisk() and System::suspendToDisk() at path
// instead of the kernel's power-state file; an empty path restores the real
// one. Not thread-safe: call it while no other thread uses System.
void setPowerStatePath(const std::string& path);
// The power-state path currently in use.
std::string powerStatePath();

// Makes System::getSysFullName() read the distribution's release files below
// root ("/tmp/x" reads "/tmp/x/etc/issue"); an empty root restores "/".
void setReleaseFileRoot(const std::string& root);

}  // namespace testing
}  // namespace nimb
