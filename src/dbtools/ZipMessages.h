#pragma once

#include <QString>
#include <cstdint>
#include <optional>

namespace tarvex {

class Prompter;

// The result codes of a Zip job (adding, testing, fixing); 0 is success. The archive
// engine gives these, and the boxes below turn them into words.
namespace zipcode {
inline constexpr int16_t kSuccess = 0;
inline constexpr int16_t kFilesSkipped = 40;
inline constexpr int16_t kEmptyZipFile = 50;
inline constexpr int16_t kArchiveNotFound = 100;
inline constexpr int16_t kCorrupted = 110;
inline constexpr int16_t kOutOfMemory = 120;
inline constexpr int16_t kBadSettings = 130;
inline constexpr int16_t kDiskFull = 150;
inline constexpr int16_t kAborted = 190;
inline constexpr int16_t kTestFailed = 200;
inline constexpr int16_t kNothingTested = 210;
inline constexpr int16_t kTemporaryFile = 280;
inline constexpr int16_t kReadError = 290;
inline constexpr int16_t kWriteError = 300;
inline constexpr int16_t kCreateError = 310;
inline constexpr int16_t kReadWriteError = 400;
inline constexpr int16_t kMultidisk = 410;
// The repair tool could not be run or did not end in time: no code of the table fits,
// so the box says that the operation failed, in general words.
inline constexpr int16_t kToolFailed = 500;
} // namespace zipcode

// Why a file was passed over (the "file skipped" event).
namespace skipreason {
inline constexpr int kFileNotFound = 0;
inline constexpr int kUnknownCompression = 1;
inline constexpr int kBadCrc = 2;
inline constexpr int kUpToDate = 3;
inline constexpr int kCannotOpen = 4;
inline constexpr int kBadPassword = 5;
inline constexpr int kCorruptData = 6;
inline constexpr int kNoOverwrite = 7;
} // namespace skipreason

// The result code of a failed write of an archive, from libzip's error code (ZIP_ER_...)
// and the system's error number when libzip has one (else 0).
int16_t ZipWriteResult(int zipError, int systemError);
// The result code of an archive that could not be opened for reading.
int16_t ZipReadResult(int zipError);
// Why a file of an archive that could not be opened is passed over (skipreason), or -1
// when it is damaged.
int ZipSkipReason(int zipError);
// Why an archive, or one file in it, cannot be read: words for the user.
QString ZipArchiveFaultReason(int zipError);
QString ZipEntryFaultReason(int zipError);

// A box to show: its text and its classic style (buttons and icon).
struct ZipBox {
    QString Text;
    int Style = 0;
};

// The box the result of an operation ("testing", "fixing") gives, or nothing for success,
// for a code of 0 and below and for the codes 10, 30 and 140.
std::optional<ZipBox> ZipResultBox(int16_t code, const QString& action);

// Shows the box of ZipResultBox, if there is one, under the program's title.
void ZipResultMessage(Prompter& prompts, int16_t code, const QString& action);

// Bytes in whole kilobytes, truncated, with "K" behind: 2047 gives "1K".
QString CalculateK(int32_t bytes);

// The status bar while a file is added, updated or tested: the percent starts at 0.
QString AddingFileStatus(const QString& name, int32_t size);
QString UpdatingFileStatus(const QString& name, int32_t size);
QString TestingFileStatus(const QString& name, int32_t size);

// The status with its last five characters replaced by the percent, right-aligned in
// three places, and "%)".
QString WithFilePercent(const QString& status, int16_t percent);

// The text of the "file skipped" box for a reason 0 to 7 (any other has no reason text).
QString SkippedReasonText(int reason);
QString SkippedFileText(const QString& name, int reason);

// The text of the "need a disk" box: disk 0 is the last of the set.
QString NeedDiskText(int16_t disk);

// The text of the "file exists" box.
QString FileExistsText(const QString& name);

// The totals of a job for the status bar: count, sum of sizes, sum of compressed sizes.
QString ZipTotalsText(int16_t count, int32_t sizeSum, int32_t compressedSum);

} // namespace tarvex
