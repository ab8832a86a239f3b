// The texts of the backup window: result boxes, status bar texts, totals and the boxes of
// the engine's events.
#include "dbtools/ZipMessages.h"
#include "dbtools/ZipArchive.h"
#include "fakes/FakeControls.h"
#include "shell/Shell.h"
#include "support/Prompter.h"

#include <QDate>
#include <QTime>
#include <gtest/gtest.h>
#include <zip.h>

#include <cerrno>
#include <limits>

using namespace tarvex;

TEST(ZipMessages, CalculateKTruncatesToWholeKilobytes) {
    EXPECT_EQ(CalculateK(0), "0K");
    EXPECT_EQ(CalculateK(1023), "0K");
    EXPECT_EQ(CalculateK(1024), "1K");
    EXPECT_EQ(CalculateK(2047), "1K");
    EXPECT_EQ(CalculateK(94208), "92K");
    EXPECT_EQ(CalculateK(std::numeric_limits<int32_t>::max()), "2097151K");
}

TEST(ZipMessages, TotalsTellCountSizesAndTheSaving) {
    // 35118 of 204800 is 17.15%: the saving is 100 less the whole percent.
    EXPECT_EQ(ZipTotalsText(3, 204800, 35118), " 3 files, 200K, 35118 bytes compressed, 83%");
    EXPECT_EQ(ZipTotalsText(1, 1000, 500), " 1 files, 0K, 500 bytes compressed, 50%");
    // A file that grew in the archive saves less than nothing.
    EXPECT_EQ(ZipTotalsText(1, 100, 150), " 1 files, 0K, 150 bytes compressed, -50%");
    EXPECT_EQ(ZipTotalsText(2, 0, 0), " 2 files, 0K");
    EXPECT_EQ(ZipTotalsText(0, 0, 0), "No files in this archive.");
}

TEST(ZipMessages, StatusTextsOfAFileStartAtNoughtPercent) {
    EXPECT_EQ(AddingFileStatus("Tarvex.MDB", 94208), " Adding file: Tarvex.MDB (92K,   0%)");
    EXPECT_EQ(UpdatingFileStatus("Picklist.MDB", 20480),
              " Updating file: Picklist.MDB (20K,   0%)");
    EXPECT_EQ(TestingFileStatus("Exercise Library.MDB", 512),
              " Testing file: Exercise Library.MDB (0K,   0%)");
}

TEST(ZipMessages, TheFilePercentReplacesTheLastFiveCharacters) {
    const QString status = AddingFileStatus("Tarvex.MDB", 94208);
    EXPECT_EQ(WithFilePercent(status, 7), " Adding file: Tarvex.MDB (92K,   7%)");
    EXPECT_EQ(WithFilePercent(status, 42), " Adding file: Tarvex.MDB (92K,  42%)");
    EXPECT_EQ(WithFilePercent(WithFilePercent(status, 42), 100),
              " Adding file: Tarvex.MDB (92K, 100%)");
}

TEST(ZipMessages, EverySkipReasonHasItsText) {
    const char* expected[] = {"file not found.",
                              "unknown compression.",
                              "CRC does not check out.",
                              "file is already up to date.",
                              "unable to open file.",
                              "invalid or no password to decrypt file.",
                              "file's compressed data is corrupted.",
                              "instructed not to overwrite."};
    for (int reason = 0; reason < 8; ++reason)
        EXPECT_EQ(SkippedReasonText(reason), QString::fromUtf8(expected[reason])) << reason;
    EXPECT_EQ(SkippedReasonText(8), "");
    EXPECT_EQ(SkippedReasonText(-1), "");
    EXPECT_EQ(SkippedFileText("Picklist.MDB", skipreason::kFileNotFound),
              "Can't process 'Picklist.MDB', file not found.");
}

TEST(ZipMessages, NeedADiskNamesTheDiskOrTheLastOne) {
    EXPECT_EQ(NeedDiskText(3), "Please insert disk #3 of the set.");
    EXPECT_EQ(NeedDiskText(0), "Please insert the last disk of the set.");
}

TEST(ZipMessages, FileExistsAsksToReplace) {
    EXPECT_EQ(FileExistsText("Tarvex.MDB"),
              "The file 'Tarvex.MDB' already exists. Do you want to replace this file?");
}

TEST(ZipMessages, DateTextIsMonthDayYearHoursMinutes) {
    EXPECT_EQ(ZipDateText(QDateTime(QDate(2024, 3, 7), QTime(9, 5, 59))), "03/07/24 09:05");
    EXPECT_EQ(ZipDateText(QDateTime(QDate(1999, 12, 31), QTime(23, 59))), "12/31/99 23:59");
}

namespace {

struct Row {
    int16_t code;
    const char* text;
    int style;
};

// The result table, with the action "testing".
const Row kRows[] = {
    {40, "Some files were skipped while testing.", msg::Exclamation},
    {50, "The Zip file is empty.", msg::Exclamation},
    {100, "Could not find the archive file.", msg::Critical},
    {110, "The archive file is corrupted. Try using the Fix option on it.", msg::Critical},
    {160, "The archive file is corrupted. Try using the Fix option on it.", msg::Critical},
    {120, "Ran out of memory while testing.", msg::Critical},
    {130, "Invalid property settings. Check your code.", msg::Critical},
    {150, "Disk full while testing.", msg::Critical},
    {180,
     "Another application is currently performing a similar task. Wait until the other "
     "application has completed its operation.",
     msg::Critical},
    {190, "The testing operation was aborted.", msg::Exclamation},
    {200, "Test failed - errors in the archive.", msg::Critical},
    {210, "No files ended up being tested in the archive.", msg::Critical},
    {280, "Problem with the temporary file.", msg::Critical},
    {290, "Problem reading from file while testing.", msg::Critical},
    {300, "Problem writing to file while testing.", msg::Critical},
    {310, "Problem creating file while testing.", msg::Critical},
    {350, "Attempt to remove parent directory.", msg::Critical},
    {370, "Names repeated in archive after discarding pathnames.", msg::Critical},
    {380, "Could not update the Zip archive date. Archive only contains directories or is empty.",
     msg::Critical},
    {400, "Read/Write error with the Zip file or one of the files to process.", msg::Critical},
    {410, "Cannot work on multiple-disk archives when not in Multidisk mode.", msg::Critical},
    {420, "Wrong disk was inserted too many times.", msg::Critical},
    {430, "Operation not supported for Multidisk Zip archives.", msg::Critical},
    {440, "Could not open the self-extractor binary.", msg::Critical},
    {450, "Could not open the self-extractor configuration file", msg::Critical},
    {460, "Invalid command parameter passed to an Xceed Zip event.", msg::Critical},
    {470, "Not enough space on first disk to write self-extractor.", msg::Critical},
    {490, "Invalid self-extractor binary version.", msg::Critical},
    {510, "Problem creating destination directory while testing.", msg::Critical},
};

} // namespace

TEST(ZipMessages, EveryRowOfTheResultTableHasItsTextAndIcon) {
    for (const Row& row : kRows) {
        const auto box = ZipResultBox(row.code, "testing");
        ASSERT_TRUE(box.has_value()) << row.code;
        EXPECT_EQ(box->Text, QString::fromUtf8(row.text)) << row.code;
        EXPECT_EQ(box->Style, row.style) << row.code;
    }
}

TEST(ZipMessages, TheActionGoesIntoItsRows) {
    EXPECT_EQ(ZipResultBox(190, "fixing")->Text, "The fixing operation was aborted.");
    EXPECT_EQ(ZipResultBox(150, "fixing")->Text, "Disk full while fixing.");
}

TEST(ZipMessages, SuccessAndTheQuietCodesShowNothing) {
    for (int code : {0, -1, -300, 10, 30, 140})
        EXPECT_FALSE(ZipResultBox(static_cast<int16_t>(code), "testing").has_value()) << code;
}

TEST(ZipMessages, AnUnknownCodeGivesTheGeneralTextAsItWasAlwaysSpelled) {
    for (int code : {1, 20, 500, 999, 32767}) {
        const auto box = ZipResultBox(static_cast<int16_t>(code), "fixing");
        ASSERT_TRUE(box.has_value()) << code;
        EXPECT_EQ(box->Text, "An error occured while fixing the specified files.") << code;
        EXPECT_EQ(box->Style, msg::Critical) << code;
    }
}

TEST(ZipMessages, ResultMessageShowsTheBoxUnderTheProgramsTitleOrNone) {
    fakes::ScriptedPrompter prompts;
    prompts.answers = {Answer::Ok};
    ZipResultMessage(prompts, 100, "testing");
    ZipResultMessage(prompts, 30, "testing");
    ZipResultMessage(prompts, 0, "testing");
    ASSERT_EQ(prompts.boxes.size(), 1u);
    EXPECT_EQ(prompts.boxes[0].text, "Could not find the archive file.");
    EXPECT_EQ(prompts.boxes[0].style, msg::Critical);
    EXPECT_EQ(prompts.boxes[0].title, Shell::kTitle);
}

TEST(ZipMessages, LibzipErrorsOfAWriteBecomeResultCodes) {
    EXPECT_EQ(ZipWriteResult(ZIP_ER_CANCELLED, 0), zipcode::kAborted);
    // A full medium, whichever step found it.
    EXPECT_EQ(ZipWriteResult(ZIP_ER_WRITE, ENOSPC), zipcode::kDiskFull);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_TMPOPEN, ENOSPC), zipcode::kDiskFull);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_CLOSE, EDQUOT), zipcode::kDiskFull);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_WRITE, EIO), zipcode::kWriteError);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_TMPOPEN, EROFS), zipcode::kCreateError);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_RENAME, ENOENT), zipcode::kTemporaryFile);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_READ, EIO), zipcode::kReadError);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_MEMORY, 0), zipcode::kOutOfMemory);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_ENCRNOTSUPP, 0), zipcode::kBadSettings);
    EXPECT_EQ(ZipWriteResult(ZIP_ER_INTERNAL, 0), zipcode::kReadWriteError);
}

TEST(ZipMessages, LibzipErrorsOfAnOpenForReadingBecomeResultCodes) {
    EXPECT_EQ(ZipReadResult(ZIP_ER_NOENT), zipcode::kArchiveNotFound);
    EXPECT_EQ(ZipReadResult(ZIP_ER_OPNOTSUPP), zipcode::kArchiveNotFound);
    EXPECT_EQ(ZipReadResult(ZIP_ER_NOZIP), zipcode::kCorrupted);
    EXPECT_EQ(ZipReadResult(ZIP_ER_INCONS), zipcode::kCorrupted);
    EXPECT_EQ(ZipReadResult(ZIP_ER_MULTIDISK), zipcode::kMultidisk);
    EXPECT_EQ(ZipReadResult(ZIP_ER_READ), zipcode::kReadError);
    EXPECT_EQ(ZipReadResult(ZIP_ER_MEMORY), zipcode::kOutOfMemory);
}

TEST(ZipMessages, AFileThatCannotBeDecryptedIsSkippedAndADamagedOneIsNot) {
    EXPECT_EQ(ZipSkipReason(ZIP_ER_WRONGPASSWD), skipreason::kBadPassword);
    EXPECT_EQ(ZipSkipReason(ZIP_ER_NOPASSWD), skipreason::kBadPassword);
    EXPECT_EQ(ZipSkipReason(ZIP_ER_COMPNOTSUPP), skipreason::kUnknownCompression);
    EXPECT_EQ(ZipSkipReason(ZIP_ER_CRC), -1);
    EXPECT_EQ(ZipSkipReason(ZIP_ER_INCONS), -1);
}

TEST(ZipMessages, FaultReasonsSpeakTheUsersWords) {
    EXPECT_EQ(ZipArchiveFaultReason(ZIP_ER_NOENT), "there is no such file");
    EXPECT_TRUE(ZipArchiveFaultReason(ZIP_ER_NOZIP).contains("cut short"));
    EXPECT_EQ(ZipEntryFaultReason(ZIP_ER_WRONGPASSWD), "the password is wrong");
    EXPECT_EQ(ZipEntryFaultReason(ZIP_ER_NOPASSWD), "it is encrypted and no password was given");
    // Anything else in libzip's own words.
    EXPECT_EQ(ZipArchiveFaultReason(ZIP_ER_MEMORY), "Malloc failure");
}
