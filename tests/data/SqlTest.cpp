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
