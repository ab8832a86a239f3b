#include "data/NullValues.h"
#include "program/ProgramHarness.h"
#include "support/Dates.h"
#include "support/Fault.h"

#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::ProgramHarness;

TEST(SaveProgram, WithNoPatientOrNoChangesDoesNothingAndAsksNothing) {
    ProgramHarness h;
    h.FillExercises(3);
    h.Program().PatientID.reset();
    h.store.SaveProgram(true);
    h.store.SaveProgram(false);
    const int32_t patient = h.AddPatient("Ng");
    h.Choose(patient, "Ng, Ann");
    h.Program().Modified = false;
    h.store.SaveProgram(true);
    h.store.SaveProgram(false);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 0);
    EXPECT_TRUE(h.prompter.boxes.empty());
}

TEST(SaveProgram, AsksFirstWhenPromptingAndNoKeepsTheChanges) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(2);
    h.prompter.answers = {Answer::No};
    h.store.SaveProgram(true);
    ASSERT_EQ(h.prompter.boxes.size(), 1u);
    EXPECT_EQ(h.prompter.boxes[0].title, "Exercise Program Modified");
    EXPECT_EQ(h.prompter.boxes[0].text, "Save current exercise program in database");
    EXPECT_EQ(h.prompter.boxes[0].style, 68);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 0);
    EXPECT_TRUE(h.Program().Modified);
    h.prompter.answers = {Answer::Yes};
    h.store.SaveProgram(true);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 1);
}

TEST(SaveProgram, WritesTheInvoiceTheExercisesInOrderAndTheItems) {
    ProgramHarness h;
    const int32_t patient = h.AddPatient("Ng");
    h.Choose(patient, "Ng, Ann");
    h.FillExercises(5);
    h.Program().Exercise(2).Reps = 12;
    h.Program().Provider = "Dr. Jane Smith, PT";
    h.Program().Usage = "Twice a day";
    h.Program().Date = QDateTime(QDate(2026, 11, 20), QTime(9, 30));
    h.Program().NumItems = 2;
    h.Program().Item(0) = {"TVX-20", "Custom video tape", 1, Currency::FromDouble(49.95)};
    h.Program().Item(1) = {"SH", "Shipping", 1, Currency::FromDouble(6.5)};
    h.store.SaveProgram(false);

    ASSERT_TRUE(h.Program().InvoiceID.has_value());
    const int32_t id = *h.Program().InvoiceID;
    EXPECT_FALSE(h.Program().Modified);
    EXPECT_FALSE(h.Program().IsNew);
    EXPECT_EQ(h.State().Prefs.Provider, "Dr. Jane Smith, PT");
    EXPECT_EQ(h.shell.status.PanelText(0), "Status: Ready");
    EXPECT_EQ(h.shell.status.PanelText(1), " " + QString::number(id));
    EXPECT_EQ(h.Count(QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1").arg(id)),
              5);
    EXPECT_EQ(
        h.Count(QStringLiteral("SELECT Reps FROM Exercise WHERE InvoiceID = %1 AND RankOnTape = 2")
                    .arg(id)),
        12);
    EXPECT_EQ(h.Count(QStringLiteral("SELECT COUNT(*) FROM Items WHERE InvoiceID = %1").arg(id)),
              2);
    QSqlQuery q =
        OpenQuery(h.Db(), QStringLiteral("SELECT PatientID, Usage, Date, Price FROM Invoice "
                                         "JOIN Items USING (InvoiceID) WHERE RankOnOrder = 0"));
    ASSERT_TRUE(q.next());
    EXPECT_EQ(q.value(0).toInt(), patient);
    EXPECT_EQ(q.value(1).toString(), "Twice a day");
    EXPECT_EQ(NullToDate(q.value(2)), QDateTime(QDate(2026, 11, 20), QTime(9, 30)));
    EXPECT_DOUBLE_EQ(q.value(3).toDouble(), 49.95);
}

TEST(SaveProgram, AProgramWithNoExercisesHasAnInvoiceAndNoExerciseRows) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.Program().NumExercises = 0;
    h.Program().Modified = true;
    h.store.SaveProgram(false);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Exercise"), 0);
}

TEST(SaveProgram, AReplacedProgramGetsANewInvoiceIdAndTheOldOneIsGone) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(4);
    h.Program().NumItems = 1;
    h.Program().Item(0) = {"TVX-20", "Tape", 1, Currency::FromDouble(10)};
    h.store.SaveProgram(false);
    const int32_t first = *h.Program().InvoiceID;
    h.Program().NumItems = 0;
    h.Program().Modified = true; // IsNew is false after the save: this replaces
    h.store.SaveProgram(false);
    const int32_t second = *h.Program().InvoiceID;
    EXPECT_NE(first, second);
    EXPECT_EQ(
        h.Count(QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE InvoiceID = %1").arg(first)), 0);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Exercise"), 4);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Items"), 0); // the former lines are lost
}

TEST(SaveProgram, ANewProgramIsAddedBesideTheLatestOne) {
    ProgramHarness h;
    const int32_t patient = h.AddPatient("Ng");
    h.Choose(patient, "Ng, Ann");
    h.FillExercises(2);
    h.store.SaveProgram(false);
    h.Choose(patient, "Ng, Ann"); // the patient dialog again: IsNew
    h.store.LoadProgram(std::nullopt);
    EXPECT_TRUE(h.Program().IsNew);
    h.Program().Modified = true;
    h.store.SaveProgram(false);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Invoice"), 2);
}

TEST(SaveProgram, EmptyPayAndShipMethodsStayNullAndReadBackEmpty) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(1);
    h.Program().PayMethod.clear();
    h.Program().ShipMethod.clear();
    h.store.SaveProgram(false);
    EXPECT_EQ(
        h.Count("SELECT COUNT(*) FROM Invoice WHERE PayMethod IS NULL AND ShipMethod IS NULL"), 1);
    h.Program().PayMethod = "x";
    h.store.LoadProgram(h.Program().InvoiceID);
    EXPECT_EQ(h.Program().PayMethod, "");
    EXPECT_EQ(h.Program().ShipMethod, "");
}

TEST(SaveProgram, NumItemsCarriesOverToAnotherPatientsSave) {
    ProgramHarness h;
    h.Choose(h.AddPatient("First"), "First, Ann");
    h.FillExercises(1);
    h.Program().NumItems = 2;
    h.Program().Item(0) = {"TVX-20", "Tape", 1, Currency::FromDouble(10)};
    h.Program().Item(1) = {"SH", "Shipping", 1, Currency::FromDouble(5)};
    h.store.SaveProgram(false);
    h.Choose(h.AddPatient("Second"), "Second, Bo");
    h.store.LoadProgram(std::nullopt); // a patient without programs: lines are not touched
    EXPECT_EQ(h.Program().NumItems, 2);
    h.Program().Modified = true;
    h.store.SaveProgram(false);
    EXPECT_EQ(h.Count(QStringLiteral("SELECT COUNT(*) FROM Items WHERE InvoiceID = %1")
                          .arg(*h.Program().InvoiceID)),
              2);
}

TEST(SaveProgram, MoreThanThreeItemsIsABoundsFaultAndNothingIsWritten) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(2);
    h.store.SaveProgram(false);
    const int32_t before = *h.Program().InvoiceID;
    h.Program().Modified = true;
    h.Program().NumItems = 4;
    EXPECT_THROW(h.store.SaveProgram(false), BoundsFault);
    // The replace ran in one transaction: the old program stands, memory is as it was.
    EXPECT_EQ(
        h.Count(QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE InvoiceID = %1").arg(before)),
        1);
    EXPECT_EQ(h.Count("SELECT COUNT(*) FROM Exercise"), 2);
    EXPECT_EQ(*h.Program().InvoiceID, before);
    EXPECT_TRUE(h.Program().Modified);
}

TEST(LoadProgram, APatientWithoutProgramsGetsTheClinicDefaultsTodayAndTheLastProvider) {
    ProgramHarness h;
    ClinicInfo& c = h.State().Clinic;
    c = {"Riverside PT", "555-0100", "Ship addr", "UPS 2 Day",
         "Bill addr",    "VISA",     "4111",      QDateTime(QDate(2028, 1, 1), QTime(0, 0)),
         "R. Owner"};
    h.State().Prefs.Provider = "Mark Lee, PTA";
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.Program().NumExercises = 3;
    h.Program().Tax = 1;
    h.Program().Modified = true;
    h.store.LoadProgram(std::nullopt);
    const ExerciseProgram& p = h.Program();
    EXPECT_FALSE(p.InvoiceID.has_value());
    EXPECT_FALSE(p.Modified);
    EXPECT_EQ(p.NumExercises, 0);
    EXPECT_EQ(p.Provider, "Mark Lee, PTA");
    EXPECT_EQ(p.Usage, "");
    EXPECT_EQ(p.Date.date(), QDate::currentDate());
    EXPECT_EQ(p.BillAddr, "Bill addr");
    EXPECT_EQ(p.ShipAddr, "Ship addr");
    EXPECT_EQ(p.ShipMethod, "UPS 2 Day");
    EXPECT_EQ(p.PayMethod, "VISA");
    EXPECT_EQ(p.CardNum, "4111");
    EXPECT_EQ(p.CardDate, QDateTime(QDate(2028, 1, 1), QTime(0, 0)));
    EXPECT_EQ(p.NameOnCard, "R. Owner");
    EXPECT_EQ(p.ShipPhone, "555-0100");
    EXPECT_EQ(p.Tax, 0);
}

TEST(LoadProgram, TakesTheLatestProgramOfThePatient) {
    ProgramHarness h;
    const int32_t patient = h.AddPatient("Ng");
    for (int day : {3, 9, 5}) {
        h.Choose(patient, "Ng, Ann");
        h.FillExercises(day);
        h.Program().Date = QDateTime(QDate(2026, 11, day), QTime(8, 0));
        h.store.SaveProgram(false);
    }
    h.Choose(patient, "Ng, Ann");
    h.store.LoadProgram(std::nullopt);
    EXPECT_EQ(h.Program().Date, QDateTime(QDate(2026, 11, 9), QTime(8, 0)));
    EXPECT_EQ(h.Program().NumExercises, 9);
    EXPECT_TRUE(h.Program().IsNew); // left alone
    EXPECT_TRUE(h.shell.status.PanelText(0).startsWith("Patient: Ng, Ann "));
}

TEST(LoadProgram, ByIdSwitchesThePatientAndReadsTheRowsBack) {
    ProgramHarness h;
    const int32_t first = h.AddPatient("First");
    h.Choose(first, "First, Ann");
    h.FillExercises(20);
    h.Program().Exercise(19).Instruct2 = "Keep your back flat.";
    h.store.SaveProgram(false);
    const int32_t stored = *h.Program().InvoiceID;
    const ExerciseEntry last = h.Program().Exercise(19);

    h.Choose(h.AddPatient("Second"), "Second, Bo");
    h.Program().NumExercises = 0;
    h.store.LoadProgram(stored);
    EXPECT_EQ(*h.Program().PatientID, first);
    EXPECT_EQ(h.Program().FullName, "First, Ann");
    EXPECT_EQ(h.shell.title.title, "TVX Regimenter Patient: First, Ann");
    EXPECT_EQ(h.Program().NumExercises, 20);
    EXPECT_EQ(h.Program().Exercise(19), last);
}

TEST(LoadProgram, AnExerciseReadFromAProgramKeepsTheFilterFieldsOfItsSlot) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(1);
    h.store.SaveProgram(false);
    h.Program().Exercise(0).Joint = "left over";
    h.Program().Exercise(0).Motion = "from before";
    h.Program().Exercise(0).Type.clear();
    h.store.LoadProgram(h.Program().InvoiceID);
    EXPECT_EQ(h.Program().Exercise(0).Joint, "left over");
    EXPECT_EQ(h.Program().Exercise(0).Motion, "from before");
    EXPECT_EQ(h.Program().Exercise(0).Type, "");
}

TEST(LoadProgram, AGoneProgramIsAFault) {
    ProgramHarness h;
    EXPECT_THROW(h.store.LoadProgram(987654), DatabaseFault);
}

TEST(LoadProgram, MoreThanTwentyRowsIsABoundsFault) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(20);
    h.store.SaveProgram(false);
    InsertRow(h.Db(), "Exercise",
              {{"InvoiceID", *h.Program().InvoiceID},
               {"RankOnTape", 20},
               {"ExerciseID", 1},
               {"code", "1"},
               {"Reps", 1},
               {"Hold", 0},
               {"Sets", 1},
               {"HasVideo", false}});
    EXPECT_THROW(h.store.LoadProgram(h.Program().InvoiceID), BoundsFault);
}

TEST(LoadProgram, AFailurePartWayLeavesTheProgramAsItWasAndTheNextSaveStoresOnlyIt) {
    ProgramHarness h;
    const int32_t other = h.AddPatient("Other");
    h.Choose(other, "Other, Ann");
    h.FillExercises(3);
    h.store.SaveProgram(false);
    const int32_t damaged = *h.Program().InvoiceID;
    // Its second row lost a required value: the load reads the first, then fails.
    Execute(h.Db(), QStringLiteral("UPDATE Exercise SET Hold = NULL WHERE InvoiceID = %1 AND "
                                   "RankOnTape = 1")
                        .arg(damaged));

    const int32_t mine = h.AddPatient("Mine");
    h.Choose(mine, "Mine, Bo");
    h.FillExercises(5);
    h.Program().Exercise(0).Reps = 12;
    h.store.SaveProgram(false);
    h.Program().Exercise(1).Reps = 7;
    h.Program().Modified = true;
    const ExerciseProgram before = h.Program();
    h.shell.shell.UpdateCaption();
    const QString title = h.shell.title.title;

    EXPECT_THROW(h.store.LoadProgram(damaged), Fault);
    EXPECT_EQ(h.Program().PatientID, before.PatientID);
    EXPECT_EQ(h.Program().FullName, before.FullName);
    EXPECT_EQ(h.Program().InvoiceID, before.InvoiceID);
    EXPECT_EQ(h.Program().Modified, true);
    EXPECT_EQ(h.Program().NumExercises, 5);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(h.Program().Exercise(i), before.Exercise(i)) << i;
    EXPECT_EQ(h.shell.title.title, title);

    // The next save stores this patient's program alone, and the damaged one is untouched.
    h.store.SaveProgram(false);
    EXPECT_EQ(h.Count(QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1")
                          .arg(*h.Program().InvoiceID)),
              5);
    EXPECT_EQ(
        h.Count(QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE PatientID = %1").arg(mine)), 1);
    EXPECT_EQ(h.Count(QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1 AND "
                                     "Reps = 7 AND RankOnTape = 1")
                          .arg(*h.Program().InvoiceID)),
              1);
    EXPECT_EQ(
        h.Count(QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1").arg(damaged)),
        3);
}

TEST(LoadProgram, OnlyTheOrderOfRankOnTapeCounts) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.Program().Modified = true;
    h.store.SaveProgram(false);
    const int32_t id = *h.Program().InvoiceID;
    for (int rank : {30, 7, 12})
        InsertRow(h.Db(), "Exercise",
                  {{"InvoiceID", id},
                   {"RankOnTape", rank},
                   {"ExerciseID", rank},
                   {"code", QString::number(rank)},
                   {"Reps", 1},
                   {"Hold", 0},
                   {"Sets", 1},
                   {"HasVideo", false}});
    h.store.LoadProgram(id);
    ASSERT_EQ(h.Program().NumExercises, 3);
    EXPECT_EQ(h.Program().Exercise(0).ExerciseID, 7);
    EXPECT_EQ(h.Program().Exercise(1).ExerciseID, 12);
    EXPECT_EQ(h.Program().Exercise(2).ExerciseID, 30);
}

TEST(ProgramStore, TextsOfEveryKindAreStoredAndReadBackExactly) {
    ProgramHarness h;
    const QString texts[] = {"O'Brien's \"plan\"; DROP TABLE Invoice; --", "100% \\ back\\slash",
                             QString::fromUtf8("Ёлка 東京 🏋️‍♀️"),
                             QString(10000, QChar('x'))};
    for (const QString& text : texts) {
        h.Choose(h.AddPatient(text.left(50)), text);
        h.FillExercises(1);
        ExerciseProgram& p = h.Program();
        p.Provider = p.Usage = p.BillAddr = p.CardNum = p.NameOnCard = text;
        p.ShipAddr = p.ShipPhone = p.PayMethod = p.ShipMethod = text;
        p.Exercise(0).Desc = p.Exercise(0).Instruct0 = p.Exercise(0).Code = text;
        h.store.SaveProgram(false);
        p.Provider.clear();
        p.Exercise(0).Desc.clear();
        h.store.LoadProgram(p.InvoiceID);
        EXPECT_EQ(p.Provider, text);
        EXPECT_EQ(p.Usage, text);
        EXPECT_EQ(p.ShipMethod, text);
        EXPECT_EQ(p.Exercise(0).Desc, text);
        EXPECT_EQ(p.Exercise(0).Instruct0, text);
        EXPECT_EQ(p.Exercise(0).Code, text);
    }
}

TEST(SaveProgram, AProgramSavedBeforeAnyLoadIsDatedWithTheTimeOfTheSave) {
    ProgramHarness h;
    h.Choose(h.AddPatient("Ng"), "Ng, Ann");
    h.FillExercises(1);
    h.Program().Date = QDateTime(); // never loaded: an order stored first
    h.Program().Modified = true;
    const QDateTime before = QDateTime::currentDateTime().addSecs(-1);
    h.store.SaveProgram(false);
    QSqlQuery row = OpenQuery(h.Db(), "SELECT Date FROM Invoice");
    ASSERT_TRUE(row.next());
    const QDateTime stored = NullToDate(row.value(0));
    EXPECT_GE(stored, before);
    EXPECT_LE(stored, QDateTime::currentDateTime().addSecs(1));
    EXPECT_NE(stored, UnreadableDate());
}

TEST(SaveProgram, TheSameProgramSavedFromTwoWorkstationsIsKeptWholeFromEachAndNeverMixed) {
    ProgramHarness front;
    const int32_t patient = front.AddPatient("Ng");
    front.Choose(patient, "Ng, Ann");
    front.FillExercises(4);
    front.store.SaveProgram(false);
    const int32_t original = *front.Program().InvoiceID;

    // The treatment room has the same program open.
    ProgramHarness room;
    CloseDatabases(room.State());
    front.folder.PointAt(room.State());
    OpenDatabases(room.State());
    LoadLibraryCache(room.State());
    room.Choose(patient, "Ng, Ann");
    room.store.LoadProgram(original);
    room.Program().IsNew = false;

    front.FillExercises(7);
    front.store.SaveProgram(false); // replaces the original
    room.FillExercises(3);
    room.store.SaveProgram(false); // finds the original replaced already

    const int32_t fromFront = *front.Program().InvoiceID;
    const int32_t fromRoom = *room.Program().InvoiceID;
    EXPECT_GT(fromRoom, fromFront) << "the later save is the later program";
    EXPECT_EQ(front.Count(
                  QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE PatientID = %1").arg(patient)),
              2)
        << "neither clinician's work is deleted behind their back";
    EXPECT_EQ(
        front.Count(
            QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1").arg(fromFront)),
        7);
    EXPECT_EQ(
        front.Count(
            QStringLiteral("SELECT COUNT(*) FROM Exercise WHERE InvoiceID = %1").arg(fromRoom)),
        3);
    EXPECT_EQ(
        front.Count(
            QStringLiteral("SELECT COUNT(*) FROM Invoice WHERE InvoiceID = %1").arg(original)),
        0);
}
