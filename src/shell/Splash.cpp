#include "shell/Splash.h"

#include "shell/Version.h"

namespace tarvex {

QString VersionText() {
    return QStringLiteral("Version %1.%2.%3")
        .arg(kVersionMajor)
        .arg(kVersionMinor)
        .arg(kVersionRevision);
}

QString ProductName() {
    return QStringLiteral("TVX Regimenter");
}

QString CompanyName() {
    return QStringLiteral("Tarvex");
}

} // namespace tarvex
