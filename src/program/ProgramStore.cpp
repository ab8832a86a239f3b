#include "program/ProgramStore.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "exercise/ExerciseRows.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Dates.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QDir>
#include <QSqlQuery>
#include <QSqlRecord>

namespace tarvex {

namespace {

QString Key(const std::optional<int32_t>& id) {
    return id ? QString::number(*id) : QString();
}

const QStringList kExerciseColumns = {
    "InvoiceID",  "AbbrevDesc", "code",      "Desc",      "ExerciseID", "Hold",      "Icon",
    "Movie",      "Instruct0",  "Instruct1", "Instruct2", "Picture0",   "Picture1",  "Picture2",
    "RankOnTape", "Reps",       "Sets",      "HasVideo",  "VideoReps",  "VideoHold", "VideoSets"};

const QStringList kItemColumns = {"InvoiceID", "PartNumber", "Description",
                                  "Qty",       "Price",      "RankOnOrder"};

} // namespace

ProgramStore::ProgramStore(AppState& state, Shell& shell, Prompter& prompter)
    : state_(state), shell_(shell), prompter_(prompter) {}

void ProgramStore::SaveProgram(bool prompt) {
    ExerciseProgram& p = state_.Program;
    if (!p.PatientID || !p.Modified)
        return;
    if (prompt && prompter_.MsgBox(QStringLiteral("Save current exercise program in database"),
                                   msg::YesNo | msg::Information,
                                   QStringLiteral("Exercise Program Modified")) != Answer::Yes)
        return;

    QSqlDatabase& db = state_.Dbs.ProgramDb;
    const std::optional<int32_t> before = p.InvoiceID;
    Transaction transaction(db);
    try {
        if (!p.IsNew)
            Execute(db,
                    QStringLiteral("DELETE * FROM Invoice WHERE InvoiceID = ") + Key(p.InvoiceID));
        WriteRows();
        transaction.Commit();
    } catch (...) {
        p.InvoiceID = before;
        throw;
    }
    p.Modified = false;
    p.IsNew = false;
    state_.Prefs.Provider = p.Provider;
    shell_.SetStatusBar(Shell::kReady);
}

void ProgramStore::WriteRows() {
    QSqlDatabase& db = state_.Dbs.ProgramDb;
    ExerciseProgram& p = state_.Program;
    // A program saved before any load (an order stored first, say) is dated now.
    if (!p.Date.isValid() || p.Date == ZeroDate())
        p.Date = QDateTime::currentDateTime();
    ColumnValues invoice = {
        {"PatientID", *p.PatientID}, {"Date", StoredDate(p.Date)}, {"Provider", p.Provider},
        {"Usage", p.Usage},          {"BillAddr", p.BillAddr},
    };
    if (!p.PayMethod.isEmpty())
        invoice.push_back({"PayMethod", p.PayMethod});
    invoice.insert(invoice.end(), {{"CardNum", p.CardNum},
                                   {"CardDate", StoredDate(p.CardDate)},
                                   {"NameOnCard", p.NameOnCard},
                                   {"Tax", p.Tax},
                                   {"ShipAddr", p.ShipAddr},
                                   {"ShipPhone", p.ShipPhone}});
    if (!p.ShipMethod.isEmpty())
        invoice.push_back({"ShipMethod", p.ShipMethod});
    const int32_t id = static_cast<int32_t>(InsertRow(db, QStringLiteral("Invoice"), invoice));
    p.InvoiceID = id;

    PreparedInsert exercises(db, QStringLiteral("Exercise"), kExerciseColumns);
    for (int i = 0; i < p.NumExercises; ++i) {
        const ExerciseEntry& e = p.Exercise(i);
        exercises.Insert({id,          e.AbbrevDesc, e.Code,     e.Desc,      e.ExerciseID,
                          e.Hold,      e.Icon,       e.Movie,    e.Instruct0, e.Instruct1,
                          e.Instruct2, e.Picture0,   e.Picture1, e.Picture2,  i,
                          e.Reps,      e.Sets,       e.HasVideo, e.VideoReps, e.VideoHold,
                          e.VideoSets});
    }
    PreparedInsert items(db, QStringLiteral("Items"), kItemColumns);
    for (int i = 0; i < p.NumItems; ++i) {
        const OrderItem& item = p.Item(i);
        items.Insert({id, item.PartNumber, item.Description, item.Qty, item.Price.ToDouble(), i});
    }
}

void ProgramStore::LoadProgram(std::optional<int32_t> invoiceID) {
    // A load that fails part way leaves the program as it was: rows read before the fault
    // must never reach a later save as part of another program.
    const ExerciseProgram before = state_.Program;
    const QString status = shell_.LastStatus();
    try {
        ReadProgram(invoiceID);
    } catch (...) {
        state_.Program = before;
        shell_.UpdateCaption();
        if (!status.isEmpty())
            shell_.SetStatusBar(status);
        throw;
    }
}

void ProgramStore::ReadProgram(std::optional<int32_t> invoiceID) {
    ExerciseProgram& p = state_.Program;
    QSqlDatabase& db = state_.Dbs.ProgramDb;
    p.Modified = false;
    shell_.SetStatusBarReady();
    p.NumExercises = 0;

    QString sql;
    if (!invoiceID) {
        sql = QStringLiteral("SELECT TOP 1 * FROM Invoice WHERE PatientID = %1 ORDER BY Date DESC")
                  .arg(Key(p.PatientID));
    } else {
        QSqlQuery owner =
            OpenQuery(db, QStringLiteral(
                              "SELECT DISTINCTROW Patient.PatientID, Patient.FullName FROM Patient "
                              "INNER JOIN Invoice ON Patient.PatientID = Invoice.PatientID WHERE "
                              "InvoiceID = %1")
                              .arg(*invoiceID));
        if (!owner.next())
            throw DatabaseFault(QStringLiteral("No current record: the stored program %1 no longer "
                                               "exists.")
                                    .arg(*invoiceID));
        p.PatientID = RequiredInt32(owner.value(0), "PatientID");
        p.FullName = NullToText(owner.value(1));
        shell_.UpdateCaption();
        sql = QStringLiteral("SELECT * FROM Invoice WHERE InvoiceID = %1").arg(*invoiceID);
    }

    QSqlQuery row = OpenQuery(db, sql);
    if (!row.next()) {
        FillDefaults();
        return;
    }
    p.InvoiceID = RequiredInt32(row.value("InvoiceID"), "InvoiceID");
    p.Provider = NullToText(row.value("Provider"));
    p.Usage = NullToText(row.value("Usage"));
    p.BillAddr = NullToText(row.value("BillAddr"));
    p.CardNum = NullToText(row.value("CardNum"));
    p.NameOnCard = NullToText(row.value("NameOnCard"));
    p.PayMethod = NullToText(row.value("PayMethod"));
    p.ShipAddr = NullToText(row.value("ShipAddr"));
    p.ShipPhone = NullToText(row.value("ShipPhone"));
    p.ShipMethod = NullToText(row.value("ShipMethod"));
    p.Date = NullToDate(row.value("Date"));
    p.CardDate = NullToDate(row.value("CardDate"));
    p.Tax = NullToInt(row.value("Tax"));
    row.finish();

    shell_.SetStatusBar(QStringLiteral("Patient: ") + p.FullName + u' ' + DefaultDateText(p.Date));
    ReadExercises(*p.InvoiceID);
}

void ProgramStore::ReadExercises(int32_t invoiceID) {
    ExerciseProgram& p = state_.Program;
    QSqlQuery rows =
        OpenQuery(state_.Dbs.ProgramDb,
                  QStringLiteral("SELECT * FROM Exercise WHERE InvoiceID = %1 ORDER BY RankOnTape")
                      .arg(invoiceID));
    const ExerciseRowReader reader(rows.record());
    p.NumExercises = 0;
    while (rows.next()) {
        // Joint, Motion and Type are not stored with a program: the slot keeps its own.
        ExerciseEntry& e = p.Exercise(p.NumExercises);
        try {
            reader.Read(rows, e);
        } catch (...) {
            RethrowAt(QStringLiteral("the database %1, table Exercise, the row of InvoiceID %2 "
                                     "and RankOnTape %3")
                          .arg(QDir::toNativeSeparators(state_.Dbs.ProgramPath))
                          .arg(invoiceID)
                          .arg(DescribeValue(rows.value(QStringLiteral("RankOnTape")))));
        }
        ++p.NumExercises;
    }
}

void ProgramStore::FillDefaults() {
    ExerciseProgram& p = state_.Program;
    const ClinicInfo& c = state_.Clinic;
    p.InvoiceID.reset();
    p.Provider = state_.Prefs.Provider;
    p.Usage.clear();
    p.Date = QDateTime::currentDateTime();
    p.BillAddr = c.BillAddr;
    p.CardDate = c.CardDate;
    p.CardNum = c.CardNum;
    p.NameOnCard = c.NameOnCard;
    p.PayMethod = c.PayMethod;
    p.ShipAddr = c.ShipAddr;
    p.ShipMethod = c.ShipMethod;
    p.ShipPhone = c.Phone;
    p.Tax = 0;
}

} // namespace tarvex
