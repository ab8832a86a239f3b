#pragma once

#include <QString>

namespace tarvex {

// The desktop: opens a document with the program the user has for it, without waiting.
class IDesktop {
public:
    virtual ~IDesktop() = default;
    virtual bool OpenDocument(const QString& path) = 0;
};

} // namespace tarvex
