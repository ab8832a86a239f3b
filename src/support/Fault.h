#pragma once

#include <QString>
#include <stdexcept>

namespace tarvex {

// A run-time fault: it ends the operation that raised it with an error box and the
// program goes on. The text is what the error box shows.
class Fault : public std::runtime_error {
public:
    explicit Fault(const QString& message) : std::runtime_error(message.toStdString()) {}
    QString Message() const { return QString::fromStdString(what()); }
};

// An index outside the bounds of a fixed array ("Subscript out of range").
class BoundsFault : public Fault {
public:
    using Fault::Fault;
};

// A value that does not fit the integer it is stored in ("Overflow").
class OverflowFault : public Fault {
public:
    using Fault::Fault;
};

// A value of the wrong kind: a null where a value is needed, a text that is no
// boolean or no date ("Type mismatch", "Invalid use of Null").
class TypeFault : public Fault {
public:
    using Fault::Fault;
};

// A database statement that failed, with the engine's message.
class DatabaseFault : public Fault {
public:
    using Fault::Fault;
};

} // namespace tarvex
