#include "shell/Splash.h"

#include "shell/CommandLine.h"

namespace tarvex {

QString VersionText() {
    return QStringLiteral("Version ") + ProgramVersion();
}

QString ProductName() {
    return QStringLiteral("TVX Regimenter");
}

QString CompanyName() {
    return QStringLiteral("Tarvex");
}

} // namespace tarvex
