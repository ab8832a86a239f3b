#pragma once

#include <QString>

namespace tarvex {

// How a boolean is written as a word: "True" or "False".
QString BoolText(bool value);

// The reverse: "True" and "False" in any case, or a number (0 is false, any other true).
// Anything else is a TypeFault ("Type mismatch").
bool CBool(const QString& text);

} // namespace tarvex
