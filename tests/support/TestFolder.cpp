#include "support/TestFolder.h"

#include "data/Databases.h"
#include "data/Schema.h"
#include "shell/AppFolder.h"

#include <QDir>
#include <stdexcept>

namespace tarvex::testing {

QString DeliveredFolder() {
    return QStringLiteral(TARVEX_TEST_DELIVERED);
}

TestFolder::TestFolder() {
    if (!dir_.isValid())
        throw std::runtime_error("no temporary folder");
    state.AppFolder = dir_.path();
    state.DeliveredFolder = DeliveredFolder();
    const QString problem = PrepareAppFolder(state.AppFolder, TemplatesFolder(state));
    if (!problem.isEmpty())
        throw std::runtime_error(problem.toStdString());
}

TestFolder::~TestFolder() {
    CloseDatabases(state);
}

void TestFolder::WithDatabase(const QString& fileName,
                              const std::function<void(QSqlDatabase&)>& work) const {
    const QString name = QStringLiteral("check-") + fileName;
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
        db.setDatabaseName(dir_.filePath(fileName));
        if (!db.open())
            throw std::runtime_error("cannot open " + fileName.toStdString());
        ApplyConnectionSettings(db);
        work(db);
        db.close();
    }
    QSqlDatabase::removeDatabase(name);
}

} // namespace tarvex::testing
