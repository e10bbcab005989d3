// The process's one Qt core application object.
#pragma once

class QCoreApplication;

namespace nimb {

// The argument count the core application is created with (0: no arguments).
extern int QT_CORE_APP_ARGC;

// Creates the Qt core application object if the process has none yet and
// returns the process's instance. The object created here is never deleted.
// Programs call it from a static initialiser, before anything else uses Qt.
QCoreApplication* ensureCoreApplication();

}  // namespace nimb
