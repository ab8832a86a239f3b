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

TEST(TranslateJet, StatementRewritesLeaveQuotedValuesAndNamesAlone) {
    EXPECT_EQ(TranslateJet("DELETE * FROM T WHERE Name = 'DELETE * FROM T'").toStdString(),
              "DELETE FROM T WHERE Name = 'DELETE * FROM T'");
    EXPECT_EQ(TranslateJet("SELECT TOP 2 Name FROM T WHERE Name <> 'SELECT TOP 5 '").toStdString(),
              "SELECT Name FROM T WHERE Name <> 'SELECT TOP 5 ' LIMIT 2");
    EXPECT_EQ(
        TranslateJet("SELECT DISTINCTROW Name FROM T WHERE Name = 'DISTINCTROW x'").toStdString(),
        "SELECT Name FROM T WHERE Name = 'DISTINCTROW x'");
    EXPECT_EQ(
        TranslateJet("SELECT T.\"Desc\", [Desc] FROM T WHERE Desc = 'say \"Desc\"'").toStdString(),
        "SELECT T.\"Desc\", [Desc] FROM T WHERE \"Desc\" = 'say \"Desc\"'");
    EXPECT_EQ(
        TranslateJet("SELECT * FROM T WHERE Name = 'it''s Desc' AND Desc <> ''").toStdString(),
        "SELECT * FROM T WHERE Name = 'it''s Desc' AND \"Desc\" <> ''");
}

TEST(TranslateJet, OnlyTheValueAfterLikeIsAPattern) {
    // The escape character itself is escaped too.
    EXPECT_EQ(TranslateJet("Name LIKE 'C:\\*'").toStdString(), "Name LIKE 'C:\\\\%' ESCAPE '\\'");
    EXPECT_EQ(TranslateJet("Name NOT like '*%'").toStdString(), "Name NOT like '%\\%' ESCAPE '\\'");
    // An equality keeps its % and * as they are.
    EXPECT_EQ(TranslateJet("Name = '50%*' OR Name LIKE '50%*'").toStdString(),
              "Name = '50%*' OR Name LIKE '50\\%%' ESCAPE '\\'");
    EXPECT_EQ(TranslateJet("SELECT Unlike FROM T WHERE Unlike = '_'").toStdString(),
              "SELECT Unlike FROM T WHERE Unlike = '_'");
}

namespace {

// An in-memory database with one table T (Name, Desc) holding the given names; Desc holds
// the name too.
class MemoryTable {
public:
    MemoryTable(const char* connection, std::initializer_list<const char*> names)
        : connection_(connection) {
        db_ = QSqlDatabase::addDatabase("QSQLITE", connection_);
        db_.setDatabaseName(":memory:");
        open_ = db_.open();
        if (!open_)
            return;
        Execute(db_, "CREATE TABLE T (Name TEXT, Desc TEXT)");
        for (const char* name : names) {
            const QString value = SqlText(QString::fromUtf8(name));
            Execute(db_, "INSERT INTO T (Name, Desc) VALUES (" + value + ", " + value + ")");
        }
    }
    ~MemoryTable() {
        db_.close();
        db_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(connection_);
    }
    bool IsOpen() const { return open_; }

    // The names that a statement selects, in the order given, joined by "|".
    std::string Names(const QString& jetSql) {
        QStringList found;
        QSqlQuery q = OpenQuery(db_, jetSql);
        while (q.next())
            found << q.value(0).toString();
        return found.join('|').toStdString();
    }
    std::string Where(const QString& condition) {
        return Names("SELECT Name FROM T WHERE " + condition + " ORDER BY Name");
    }
    QSqlDatabase& Db() { return db_; }

private:
    QString connection_;
    QSqlDatabase db_;
    bool open_ = false;
};

} // namespace

TEST(TranslateJet, LikeFiltersOnRealRowsFindExactlyTheRowsTheyName) {
    MemoryTable t("sql-like-rows",
                  {"Desc stairs", "Stairs", "50% squat", "50 squat", "5000 squat", "a_b", "aXb",
                   "ab", "Child's pose", "Childs pose", "C:\\x", "C:x", "100%"});
    ASSERT_TRUE(t.IsOpen());
    EXPECT_EQ(t.Where("Desc = 'Desc stairs'"), "Desc stairs");
    EXPECT_EQ(t.Where("Desc LIKE 'Desc*'"), "Desc stairs");
    EXPECT_EQ(t.Where("Name LIKE '*stairs'"), "Desc stairs|Stairs"); // LIKE ignores case
    EXPECT_EQ(t.Where("Name LIKE '50%*'"), "50% squat");
    EXPECT_EQ(t.Where("Name LIKE '*%'"), "100%");
    EXPECT_EQ(t.Where("Name LIKE '*%*'"), "100%|50% squat");
    EXPECT_EQ(t.Where("Name LIKE '50?squat'"), "50 squat");
    EXPECT_EQ(t.Where("Name LIKE 'a_b'"), "a_b");
    EXPECT_EQ(t.Where("Name LIKE 'a?b'"), "aXb|a_b");
    EXPECT_EQ(t.Where("Name LIKE 'a*b'"), "aXb|a_b|ab");
    EXPECT_EQ(t.Where("Name LIKE " + SqlText("Child's*")), "Child's pose");
    EXPECT_EQ(t.Where("Name LIKE 'C:\\*'"), "C:\\x");
    EXPECT_EQ(t.Where("Name LIKE 'C:?'"), "C:x");
    EXPECT_EQ(t.Where("Name NOT LIKE '*squat' AND Name NOT LIKE '*%*' AND Name LIKE '*a*'"),
              "Desc stairs|Stairs|aXb|a_b|ab"); // in the order of the characters' codes
}

TEST(TranslateJet, RewrittenStatementsRunOnRealRows) {
    MemoryTable t("sql-statement-rows", {"DELETE * FROM T", "TOP 1", "b", "a"});
    ASSERT_TRUE(t.IsOpen());
    EXPECT_EQ(t.Names("SELECT TOP 2 Name FROM T WHERE Name <> 'SELECT TOP 1' ORDER BY Name"),
              "DELETE * FROM T|TOP 1");
    EXPECT_EQ(t.Names("SELECT DISTINCTROW Desc FROM T WHERE Desc LIKE 'TOP ?' ORDER BY Desc DESC"),
              "TOP 1");
    Execute(t.Db(), "DELETE * FROM T WHERE Name = 'DELETE * FROM T'");
    EXPECT_EQ(t.Where("Name LIKE '*'"), "TOP 1|a|b");
}
