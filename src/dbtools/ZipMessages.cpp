#include "dbtools/ZipMessages.h"

#include "shell/Shell.h"
#include "support/Prompter.h"

#include <zip.h>

#include <cerrno>
#include <cmath>
#include <iterator>

namespace tarvex {

namespace {

// The rows of the result table whose text does not name the action.
struct FixedRow {
    int16_t Code;
    const char* Text;
    int Style;
};

constexpr FixedRow kFixedRows[] = {
    {50, "The Zip file is empty.", msg::Exclamation},
    {100, "Could not find the archive file.", msg::Critical},
    {110, "The archive file is corrupted. Try using the Fix option on it.", msg::Critical},
    {160, "The archive file is corrupted. Try using the Fix option on it.", msg::Critical},
    {130, "Invalid property settings. Check your code.", msg::Critical},
    {180,
     "Another application is currently performing a similar task. Wait until the other "
     "application has completed its operation.",
     msg::Critical},
    {200, "Test failed - errors in the archive.", msg::Critical},
    {210, "No files ended up being tested in the archive.", msg::Critical},
    {280, "Problem with the temporary file.", msg::Critical},
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
};

// The rows whose text names the action: a text before it and one after.
struct ActionRow {
    int16_t Code;
    const char* Before;
    const char* After;
    int Style;
};

// Code 150 has a second text for a full disk inserted in place of an empty one, under a
// flag that is never set: the first text always stands, so only it is here.
constexpr ActionRow kActionRows[] = {
    {40, "Some files were skipped while ", ".", msg::Exclamation},
    {120, "Ran out of memory while ", ".", msg::Critical},
    {150, "Disk full while ", ".", msg::Critical},
    {190, "The ", " operation was aborted.", msg::Exclamation},
    {290, "Problem reading from file while ", ".", msg::Critical},
    {300, "Problem writing to file while ", ".", msg::Critical},
    {310, "Problem creating file while ", ".", msg::Critical},
    {510, "Problem creating destination directory while ", ".", msg::Critical},
};

QString FileStatus(const char* verb, const QString& name, int32_t size) {
    return QStringLiteral(" %1 file: %2 (%3,   0%)")
        .arg(QLatin1String(verb), name, CalculateK(size));
}

QString ZipErrorText(int code) {
    zip_error_t error;
    zip_error_init_with_code(&error, code);
    QString text = QString::fromUtf8(zip_error_strerror(&error));
    zip_error_fini(&error);
    return text;
}

bool IsDiskFull(int systemError) {
#ifdef EDQUOT
    if (systemError == EDQUOT)
        return true;
#endif
    return systemError == ENOSPC;
}

} // namespace

int16_t ZipWriteResult(int zipError, int systemError) {
    if (zipError == ZIP_ER_CANCELLED)
        return zipcode::kAborted;
    if (IsDiskFull(systemError))
        return zipcode::kDiskFull;
    switch (zipError) {
    case ZIP_ER_TMPOPEN:
        return zipcode::kCreateError;
    case ZIP_ER_RENAME: // the finished temporary file could not take the archive's place
        return zipcode::kTemporaryFile;
    case ZIP_ER_WRITE:
    case ZIP_ER_CLOSE:
    case ZIP_ER_SEEK:
    case ZIP_ER_TELL:
        return zipcode::kWriteError;
    case ZIP_ER_READ: // a file to put in could not be read
    case ZIP_ER_OPEN:
        return zipcode::kReadError;
    case ZIP_ER_MEMORY:
        return zipcode::kOutOfMemory;
    case ZIP_ER_INVAL:
    case ZIP_ER_COMPNOTSUPP:
    case ZIP_ER_ENCRNOTSUPP:
        return zipcode::kBadSettings;
    default:
        return zipcode::kReadWriteError;
    }
}

int16_t ZipReadResult(int zipError) {
    switch (zipError) {
    case ZIP_ER_NOENT:
    case ZIP_ER_OPNOTSUPP: // a folder of the archive's name
        return zipcode::kArchiveNotFound;
    case ZIP_ER_NOZIP:
    case ZIP_ER_INCONS:
    case ZIP_ER_EOF:
        return zipcode::kCorrupted;
    case ZIP_ER_MULTIDISK:
        return zipcode::kMultidisk;
    case ZIP_ER_MEMORY:
        return zipcode::kOutOfMemory;
    case ZIP_ER_OPEN:
    case ZIP_ER_READ:
    case ZIP_ER_SEEK:
        return zipcode::kReadError;
    default:
        return zipcode::kReadWriteError;
    }
}

int ZipSkipReason(int zipError) {
    switch (zipError) {
    case ZIP_ER_NOPASSWD:
    case ZIP_ER_WRONGPASSWD:
        return skipreason::kBadPassword;
    case ZIP_ER_COMPNOTSUPP:
    case ZIP_ER_ENCRNOTSUPP:
        return skipreason::kUnknownCompression;
    default:
        return -1;
    }
}

QString ZipArchiveFaultReason(int zipError) {
    switch (zipError) {
    case ZIP_ER_NOENT:
        return QStringLiteral("there is no such file");
    case ZIP_ER_NOZIP:
        return QStringLiteral("it is no Zip archive, or its end is missing (it may have been "
                              "cut short)");
    case ZIP_ER_INCONS:
        return QStringLiteral("it is damaged: its table of contents does not match its files");
    default:
        return ZipErrorText(zipError);
    }
}

QString ZipEntryFaultReason(int zipError) {
    switch (zipError) {
    case ZIP_ER_NOPASSWD:
        return QStringLiteral("it is encrypted and no password was given");
    case ZIP_ER_WRONGPASSWD:
        return QStringLiteral("the password is wrong");
    case ZIP_ER_CRC:
        return QStringLiteral("its data do not match their check sum: the archive is damaged, "
                              "or the password is wrong");
    default:
        return ZipErrorText(zipError);
    }
}

std::optional<ZipBox> ZipResultBox(int16_t code, const QString& action) {
    if (code <= 0 || code == 10 || code == 30 || code == 140)
        return std::nullopt;
    for (const FixedRow& row : kFixedRows)
        if (row.Code == code)
            return ZipBox{QString::fromUtf8(row.Text), row.Style};
    for (const ActionRow& row : kActionRows)
        if (row.Code == code)
            return ZipBox{QString::fromUtf8(row.Before) + action + QString::fromUtf8(row.After),
                          row.Style};
    // "occured" is how the program has always spelled it.
    return ZipBox{QStringLiteral("An error occured while %1 the specified files.").arg(action),
                  msg::Critical};
}

void ZipResultMessage(Prompter& prompts, int16_t code, const QString& action) {
    if (const auto box = ZipResultBox(code, action))
        prompts.MsgBox(box->Text, box->Style, Shell::kTitle);
}

QString CalculateK(int32_t bytes) {
    return QString::number(bytes / 1024) + u'K';
}

QString AddingFileStatus(const QString& name, int32_t size) {
    return FileStatus("Adding", name, size);
}

QString UpdatingFileStatus(const QString& name, int32_t size) {
    return FileStatus("Updating", name, size);
}

QString TestingFileStatus(const QString& name, int32_t size) {
    return FileStatus("Testing", name, size);
}

QString WithFilePercent(const QString& status, int16_t percent) {
    return status.left(status.size() - 5) + QStringLiteral("%1%)").arg(percent, 3);
}

QString SkippedReasonText(int reason) {
    static const char* const kReasons[] = {
        "file not found.",
        "unknown compression.",
        "CRC does not check out.",
        "file is already up to date.",
        "unable to open file.",
        "invalid or no password to decrypt file.",
        "file's compressed data is corrupted.",
        "instructed not to overwrite.",
    };
    if (reason < 0 || reason >= static_cast<int>(std::size(kReasons)))
        return {};
    return QString::fromUtf8(kReasons[reason]);
}

QString SkippedFileText(const QString& name, int reason) {
    return QStringLiteral("Can't process '%1', %2").arg(name, SkippedReasonText(reason));
}

QString NeedDiskText(int16_t disk) {
    if (disk == 0)
        return QStringLiteral("Please insert the last disk of the set.");
    return QStringLiteral("Please insert disk #%1 of the set.").arg(disk);
}

QString FileExistsText(const QString& name) {
    return QStringLiteral("The file '%1' already exists. Do you want to replace this file?")
        .arg(name);
}

QString ZipTotalsText(int16_t count, int32_t sizeSum, int32_t compressedSum) {
    if (sizeSum >= 1) {
        const double ratio = static_cast<double>(compressedSum) / sizeSum * 100.0;
        const auto saving = static_cast<int64_t>(100 - std::floor(ratio));
        return QStringLiteral(" %1 files, %2, %3 bytes compressed, %4%")
            .arg(count)
            .arg(CalculateK(sizeSum))
            .arg(compressedSum)
            .arg(saving);
    }
    if (count != 0)
        return QStringLiteral(" %1 files, 0K").arg(count);
    return QStringLiteral("No files in this archive.");
}

} // namespace tarvex
