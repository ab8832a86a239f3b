// The private PostgreSQL cluster of the tests, and the server's behaviour that the
// PostgreSQL form of the databases builds on: text that compares without regard to case
// through a nondeterministic ICU collation, which PostgreSQL 15 does not take in LIKE, and
// keys handed back by RETURNING.

#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <gtest/gtest.h>

namespace {

class PgCluster : public ::testing::Test {
protected:
    void SetUp() override {
        db_ = QSqlDatabase::addDatabase(QStringLiteral("QPSQL"), QStringLiteral("pg-cluster"));
        db_.setHostName(QStringLiteral(TARVEX_PG_SOCKET_DIR));
        db_.setPort(5432);
        db_.setUserName(QStringLiteral("tarvex"));
        db_.setDatabaseName(QStringLiteral("postgres"));
        ASSERT_TRUE(db_.open()) << db_.lastError().text().toStdString();
        Exec("DROP TABLE IF EXISTS probe");
        Exec("DROP COLLATION IF EXISTS nocase");
        Exec("CREATE COLLATION nocase (provider = icu, locale = 'und-u-ks-level2', "
             "deterministic = false)");
        Exec("CREATE TABLE probe (ID SERIAL PRIMARY KEY, Name TEXT COLLATE nocase)");
    }
    void TearDown() override {
        db_.close();
        db_ = QSqlDatabase();
        QSqlDatabase::removeDatabase(QStringLiteral("pg-cluster"));
    }
    void Exec(const char* sql) {
        QSqlQuery query(db_);
        ASSERT_TRUE(query.exec(QString::fromUtf8(sql))) << query.lastError().text().toStdString();
    }
    int Count(const char* sql) {
        QSqlQuery query(db_);
        if (!query.exec(QString::fromUtf8(sql)) || !query.next())
            return -1;
        return query.value(0).toInt();
    }
    QSqlDatabase db_;
};

} // namespace

TEST_F(PgCluster, TextComparesWithoutRegardToCaseThroughTheIcuCollation) {
    Exec("INSERT INTO probe (Name) VALUES ('O''Brien, Chloé'), ('Smith, Ann')");
    EXPECT_EQ(Count("SELECT COUNT(*) FROM probe WHERE Name = 'o''brien, CHLOÉ'"), 1);
    EXPECT_EQ(Count("SELECT COUNT(*) FROM probe WHERE Name = 'SMITH, ANN'"), 1);
    EXPECT_EQ(Count("SELECT COUNT(DISTINCT Name) FROM (VALUES ('Knee' COLLATE nocase), "
                    "('KNEE')) AS v (Name)"),
              1);
}

TEST_F(PgCluster, LikeNeedsADeterministicCollationAndIlikeOnOneFindsWithoutRegardToCase) {
    Exec("INSERT INTO probe (Name) VALUES ('Knee, Hip'), ('Shoulder')");
    QSqlQuery like(db_);
    EXPECT_FALSE(like.exec(QStringLiteral("SELECT COUNT(*) FROM probe WHERE Name LIKE '%knee%'")));
    EXPECT_TRUE(like.lastError().text().contains(QStringLiteral("nondeterministic")))
        << like.lastError().text().toStdString();
    EXPECT_EQ(Count("SELECT COUNT(*) FROM probe WHERE Name COLLATE \"C\" ILIKE '%knee%'"), 1);
}

TEST_F(PgCluster, TheServerHandsBackTheKeyOfANewRow) {
    QSqlQuery insert(db_);
    ASSERT_TRUE(insert.exec(QStringLiteral("INSERT INTO probe (Name) VALUES ('a') RETURNING ID")));
    ASSERT_TRUE(insert.next());
    const int first = insert.value(0).toInt();
    ASSERT_TRUE(insert.exec(QStringLiteral("INSERT INTO probe (Name) VALUES ('b') RETURNING ID")));
    ASSERT_TRUE(insert.next());
    EXPECT_EQ(insert.value(0).toInt(), first + 1);
}
