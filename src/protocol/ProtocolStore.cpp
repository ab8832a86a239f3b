#include "protocol/ProtocolStore.h"

#include "data/Sql.h"
#include "exercise/ExerciseRows.h"
#include "shell/AppState.h"

namespace tarvex {

namespace {

int32_t WriteProtocol(AppState& state, const QString& name) {
    QSqlDatabase& db = state.Dbs.ProgramDb;
    const auto id =
        static_cast<int32_t>(InsertRow(db, QStringLiteral("Protocol"), {{"Name", name}}));
    PreparedInsert rows(db, QStringLiteral("ProtocolExercise"),
                        QStringList({"ProtocolID", "RankOnTape"}) + ExerciseRowColumns());
    const ExerciseProgram& p = state.Program;
    for (int i = 0; i < p.NumExercises; ++i)
        rows.Insert(QVariantList({id, i}) + ExerciseRowValues(p.Exercise(i)));
    return id;
}

} // namespace

QString BuildProtocolQuery(int32_t protocolID) {
    return QStringLiteral("SELECT DISTINCTROW *") + QStringLiteral(" FROM ProtocolExercise") +
           QStringLiteral(" WHERE ProtocolID =") + QString::number(protocolID) +
           QStringLiteral(" ORDER BY RankOnTape");
}

QString ProtocolNamesQuery() {
    return QStringLiteral("SELECT * FROM Protocol ORDER BY Name Asc");
}

int32_t InsertProtocol(AppState& state, const QString& name) {
    Transaction transaction(state.Dbs.ProgramDb);
    const int32_t id = WriteProtocol(state, name);
    transaction.Commit();
    return id;
}

int32_t ReplaceProtocol(AppState& state, int32_t oldID, const QString& name) {
    Transaction transaction(state.Dbs.ProgramDb);
    const int32_t id = WriteProtocol(state, name);
    DeleteProtocolRow(state, oldID);
    transaction.Commit();
    return id;
}

void DeleteProtocolRow(AppState& state, int32_t protocolID) {
    Execute(state.Dbs.ProgramDb, QStringLiteral("DELETE * FROM Protocol WHERE ProtocolID=") +
                                     QString::number(protocolID));
}

} // namespace tarvex
