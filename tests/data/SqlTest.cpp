#include "data/Sql.h"

#include <gtest/gtest.h>

using namespace tarvex;

TEST(TranslateJet, DeleteStarBecomesAPlainDelete) {
    EXPECT_EQ(TranslateJet("DELETE * FROM Invoice WHERE InvoiceID = 12"),
              "DELETE FROM Invoice WHERE InvoiceID = 12");
}

TEST(TranslateJet, TopBecomesLimit) {
    EXPECT_EQ(TranslateJet("SELECT TOP 1 * FROM Invoice WHERE PatientID = 3 ORDER BY Date DESC"),
              "SELECT * FROM Invoice WHERE PatientID = 3 ORDER BY Date DESC LIMIT 1");
}

TEST(TranslateJet, DistinctRowIsDropped) {
    EXPECT_EQ(TranslateJet("SELECT DISTINCTROW * FROM ProtocolExercise WHERE ProtocolID =4 ORDER "
                           "BY RankOnTape"),
              "SELECT * FROM ProtocolExercise WHERE ProtocolID =4 ORDER BY RankOnTape");
}

TEST(TranslateJet, TheColumnDescIsQuotedButNotTheKeyword) {
    EXPECT_EQ(
        TranslateJet("SELECT ExerciseID, Code, Joint, Motion, Type, Desc From ExerciseLibrary"),
        "SELECT ExerciseID, Code, Joint, Motion, Type, \"Desc\" From ExerciseLibrary");
    EXPECT_EQ(TranslateJet("SELECT AbbrevDesc FROM T ORDER BY ExerciseID DESC"),
              "SELECT AbbrevDesc FROM T ORDER BY ExerciseID DESC");
}

TEST(TranslateJet, WildcardsOfLikeBecomeSqlWildcards) {
    EXPECT_EQ(TranslateJet("SELECT * FROM ExerciseLibrary WHERE (Joint LIKE '*Knee*')"),
              "SELECT * FROM ExerciseLibrary WHERE (Joint LIKE '%Knee%')");
    EXPECT_EQ(TranslateJet("Name LIKE 'Child''s *'"), "Name LIKE 'Child''s %'");
}

TEST(SqlText, DoublesApostrophes) {
    EXPECT_EQ(SqlText("Child's pose"), "'Child''s pose'");
    EXPECT_EQ(SqlText(""), "''");
}

TEST(TranslateJet, QuotedValuesAreLeftAsTyped) {
    EXPECT_EQ(
        TranslateJet("SELECT * FROM T WHERE Desc = 'Desc stairs' ORDER BY Desc DESC").toStdString(),
        "SELECT * FROM T WHERE \"Desc\" = 'Desc stairs' ORDER BY \"Desc\" DESC");
    EXPECT_EQ(TranslateJet("SELECT * FROM T WHERE Name = 'SELECT TOP 1 DISTINCTROW ''x'' *'")
                  .toStdString(),
              "SELECT * FROM T WHERE Name = 'SELECT TOP 1 DISTINCTROW ''x'' *'");
    EXPECT_EQ(TranslateJet("SELECT \"Desc\" FROM T").toStdString(), "SELECT \"Desc\" FROM T");
}

TEST(TranslateJet, PercentAndUnderscoreInALikeValueAreTheCharactersThemselves) {
    EXPECT_EQ(TranslateJet("Name LIKE '*50%*'").toStdString(), "Name LIKE '%50\\%%' ESCAPE '\\'");
    EXPECT_EQ(TranslateJet("Name LIKE 'a_b?'").toStdString(), "Name LIKE 'a\\_b_' ESCAPE '\\'");
}

TEST(TranslateJet, FiltersFindExactlyTheRowsTheyName) {
    QSqlDatabase db = QSqlDatabase::addDatabase("QSQLITE", "sql-literals");
    db.setDatabaseName(":memory:");
    ASSERT_TRUE(db.open());
    Execute(db, "CREATE TABLE T (Name TEXT, Desc TEXT)");
    for (const char* name : {"Desc stairs", "50% squat", "50 squat", "a_b", "aXb", "Child's pose"})
        Execute(db, QStringLiteral("INSERT INTO T (Name, Desc) VALUES (%1, 'x')")
                        .arg(SqlText(QString::fromUtf8(name))));
    const auto names = [&db](const QString& where) {
        QStringList found;
        QSqlQuery q = OpenQuery(db, "SELECT Name FROM T WHERE " + where + " ORDER BY Name");
        while (q.next())
            found << q.value(0).toString();
        return found.join('|').toStdString();
    };
    EXPECT_EQ(names("Name = 'Desc stairs'"), "Desc stairs");
    EXPECT_EQ(names("Name LIKE '*Desc*'"), "Desc stairs");
    EXPECT_EQ(names("Name LIKE '*50%*'"), "50% squat");
    EXPECT_EQ(names("Name LIKE '50*'"), "50 squat|50% squat");
    EXPECT_EQ(names("Name LIKE 'a_b'"), "a_b");
    EXPECT_EQ(names("Name LIKE 'a?b'"), "aXb|a_b");
    EXPECT_EQ(names("Name LIKE " + SqlText("Child's*")), "Child's pose");
    db.close();
    db = QSqlDatabase();
    QSqlDatabase::removeDatabase("sql-literals");
}
