#include "nimb/coreapp.h"

#include <QCoreApplication>

namespace nimb {

int QT_CORE_APP_ARGC = 0;

QCoreApplication* ensureCoreApplication() {
    if (QCoreApplication::instance() == nullptr) {
        // Deliberately leaked: the application object lives until the process
        // ends, after every static object that may still use Qt.
        new QCoreApplication(QT_CORE_APP_ARGC, nullptr);
    }
    return QCoreApplication::instance();
}

}  // namespace nimb
