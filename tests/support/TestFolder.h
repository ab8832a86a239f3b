#pragma once

#include "shell/AppState.h"

#include <QSqlDatabase>
#include <QTemporaryDir>
#include <functional>

namespace tarvex::testing {

// The build's delivered folder: "templates" with the databases and texts.
QString DeliveredFolder();

// A fresh application folder for one test, filled from the delivered files, with an
// AppState that points at it. The databases are closed when it goes.
class TestFolder {
public:
    TestFolder();
    ~TestFolder();

    QString Path() const { return dir_.path(); }
    QString File(const QString& name) const { return dir_.filePath(name); }
    AppState state;

    // Opens a file of the folder on a connection of its own for checks behind the
    // program's back, runs the work and closes it.
    void WithDatabase(const QString& fileName,
                      const std::function<void(QSqlDatabase&)>& work) const;

private:
    QTemporaryDir dir_;
};

} // namespace tarvex::testing
