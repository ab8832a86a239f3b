#pragma once

#include <QString>
#include <stdexcept>

namespace tarvex {

// A run-time fault: it ends the operation that raised it with an error box and the
// program goes on. The text is what the error box shows; the number is the run-time's
// error number, which an error handler's own box shows beside it.
class Fault : public std::runtime_error {
public:
    explicit Fault(const QString& message, int number = kInvalidCall)
        : std::runtime_error(message.toStdString()), number_(number) {}
    QString Message() const { return QString::fromStdString(what()); }
    int Number() const { return number_; }

    static constexpr int kInvalidCall = 5; // "Invalid procedure call or argument"

private:
    int number_;
};

// An index outside the bounds of a fixed array ("Subscript out of range").
class BoundsFault : public Fault {
public:
    static constexpr int kNumber = 9;
    explicit BoundsFault(const QString& message) : Fault(message, kNumber) {}
};

// A value that does not fit the integer it is stored in ("Overflow").
class OverflowFault : public Fault {
public:
    static constexpr int kNumber = 6;
    explicit OverflowFault(const QString& message) : Fault(message, kNumber) {}
};

// A value of the wrong kind: a null where a value is needed, a text that is no
// boolean or no date ("Type mismatch", "Invalid use of Null").
class TypeFault : public Fault {
public:
    static constexpr int kNumber = 13;
    explicit TypeFault(const QString& message) : Fault(message, kNumber) {}
};

// A database statement that failed, with the engine's message. A file that the engine
// could not find or open has its own number, which some handlers retry.
class DatabaseFault : public Fault {
public:
    static constexpr int kEngineError = 3000;
    static constexpr int kFileNotFound = 3024;
    explicit DatabaseFault(const QString& message, int number = kEngineError)
        : Fault(message, number) {}
};

// Inside a catch block: raises the fault being handled again, of the same kind, with the
// place where it arose added to its text (the file or table, the key, the column and the
// value), so that the report tells the user where to look. Anything that is no fault goes
// on unchanged.
[[noreturn]] inline void RethrowAt(const QString& place) {
    const auto text = [&place](const Fault& fault) {
        return fault.Message() + QStringLiteral("\n\nWhere: ") + place;
    };
    try {
        throw;
    } catch (const BoundsFault& fault) {
        throw BoundsFault(text(fault));
    } catch (const OverflowFault& fault) {
        throw OverflowFault(text(fault));
    } catch (const TypeFault& fault) {
        throw TypeFault(text(fault));
    } catch (const DatabaseFault& fault) {
        throw DatabaseFault(text(fault), fault.Number());
    } catch (const Fault& fault) {
        throw Fault(text(fault), fault.Number());
    }
}

// Runs the work; a fault it raises goes on with the place added (see RethrowAt).
template <typename Work> decltype(auto) AtPlace(const QString& place, Work&& work) {
    try {
        return work();
    } catch (...) {
        RethrowAt(place);
    }
}

} // namespace tarvex
