#include "protocol/ProtocolLists.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "exercise/ExerciseRows.h"
#include "protocol/ProtocolStore.h"
#include "shell/AppState.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QDir>
#include <QSqlRecord>

namespace tarvex {

ProtocolLists::ProtocolLists(AppState& state, Prompter& prompter, IItemDataCombo& cboProtocol,
                             IListBox& lstProtocol)
    : state_(state), prompter_(prompter), cboProtocol_(cboProtocol), lstProtocol_(lstProtocol) {}

void ProtocolLists::FillcboProtocol() {
    cboProtocol_.Clear();
    cboProtocol_.AddItem(QLatin1String(kNoneSelected), 0);
    QSqlQuery rows = OpenQuery(state_.Dbs.ProgramDb, ProtocolNamesQuery());
    const QSqlRecord record = rows.record();
    const int name = record.indexOf(QStringLiteral("Name"));
    const int id = record.indexOf(QStringLiteral("ProtocolID"));
    while (rows.next())
        cboProtocol_.AddItem(NullToText(rows.value(name)),
                             RequiredInt32(rows.value(id), "ProtocolID"));
    rows.finish();
    cboProtocol_.SetListIndex(0);
    cboProtocol_Click();
}

void ProtocolLists::cboProtocol_Click() {
    const int chosen = cboProtocol_.ListIndex();
    currentProtocolID_ = chosen >= 0 ? cboProtocol_.ItemData(chosen) : 0;
    if (currentProtocolID_ == 0)
        lstProtocol_.Clear();
    else
        LoadLstProtocol(currentProtocolID_);
}

QString ProtocolLists::ChosenName() const {
    const int chosen = cboProtocol_.ListIndex();
    return chosen >= 0 ? cboProtocol_.List(chosen) : QString();
}

void ProtocolLists::LoadLstProtocol(int32_t protocolID) {
    RunProtocolHandler(
        state_.AppFolder, prompter_, QStringLiteral("Error in LoadLstProtocol"), [&] {
            QSqlQuery rows = OpenQuery(state_.Dbs.ProgramDb, BuildProtocolQuery(protocolID));
            const int desc = rows.record().indexOf(QStringLiteral("Desc"));
            lstProtocol_.Clear();
            while (rows.next())
                lstProtocol_.AddItem(NullToText(rows.value(desc)));
        });
}

void ProtocolLists::InitSelExsFromProtocol(int32_t protocolID,
                                           const std::function<void()>& loadSelectedExs) {
    RunProtocolHandler(
        state_.AppFolder, prompter_, QStringLiteral("Error in InitSelExsFromProtocol"), [&] {
            ExerciseProgram& p = state_.Program;
            QSqlQuery rows = OpenQuery(state_.Dbs.ProgramDb, BuildProtocolQuery(protocolID));
            const ExerciseRowReader reader(rows.record());
            int counter = 0;
            // Slots are read in place: a row past the twentieth ends here with the count
            // unchanged, though the slots before it hold the protocol's exercises already.
            while (rows.next()) {
                reader.Read(rows, p.Exercise(counter));
                ++counter;
            }
            rows.finish();
            p.NumExercises = static_cast<int16_t>(counter);
            if (loadSelectedExs)
                loadSelectedExs();
        });
}

void RunProtocolHandler(const QString& appFolder, Prompter& prompter, const QString& title,
                        const std::function<void()>& work) {
    bool retried = false;
    for (;;) {
        try {
            work();
            return;
        } catch (const Fault& fault) {
            if (fault.Number() == DatabaseFault::kFileNotFound) {
                if (retried)
                    return;
                retried = true;
                QDir::setCurrent(appFolder);
                continue;
            }
            prompter.MsgBox(QStringLiteral("Error: %1 %2").arg(fault.Number()).arg(fault.Message()),
                            msg::OkOnly, title);
            return;
        }
    }
}

} // namespace tarvex
