#pragma once

#include "shell/AppState.h"

#include <QSqlDatabase>
#include <QTemporaryDir>
#include <functional>

namespace tarvex::testing {

// The build's delivered folder: "templates" with the databases and texts.
QString DeliveredFolder();

// The test server's socket folder when the tests run against the server (the environment's
// TARVEX_TEST_SERVER), otherwise empty.
QString TestServerSocket();
inline bool OnTestServer() {
    return !TestServerSocket().isEmpty();
}

// A fresh application folder for one test, filled from the delivered files, with an
// AppState that points at it. The databases are closed when it goes. When the tests run
// against the server, the delivered databases are also in a database of their own on it,
// which the AppState chooses, and which is dropped when the folder goes.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();

    QString Path() const { return dir_.path(); }
    // The test's database on the server; empty when the tests run on the files.
    const QString& ServerDatabase() const { return serverDatabase_; }
    QString File(const QString& name) const { return dir_.filePath(name); }
    AppState state;

    // Points another run's state at the same folder and databases, as a restart of the
    // program would find them.
    void PointAt(AppState& other) const;

    // Opens a database (by its file name) on a connection of its own for checks behind the
    // program's back, runs the work and closes it: the file of the folder, or the store on
    // the server.
    void WithDatabase(const QString& fileName,
                      const std::function<void(QSqlDatabase&)>& work) const;

private:
    QTemporaryDir dir_;
    QString serverDatabase_;
};

// Makes the engine refuse, with the message, each row of the table for which the condition
// (on NEW, the row) holds, when the event ("INSERT", "DELETE") happens: a fault in the
// middle of the program's work.
void RefuseWhen(QSqlDatabase& db, const QString& event, const QString& table,
                const QString& condition, const QString& message);

} // namespace tarvex::testing
