#include "tessary/configmgr.h"

namespace tessary {

ConfigManagerBase::~ConfigManagerBase() = default;

}  // namespace tessary
