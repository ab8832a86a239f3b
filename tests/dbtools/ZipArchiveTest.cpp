// The archive engine on real files: what it writes is a Zip archive other tools accept,
// it reads back what it wrote, and every failure leaves the last good archive whole.
#include "dbtools/ZipArchive.h"
#include "BackupFakes.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <zip.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

QByteArray ReadAll(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void WriteAll(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    file.write(bytes);
}

// A data folder with the delivered databases and a target folder for the archive.
struct Bench {
    Bench() {
        target = dir.filePath("target");
        QDir().mkpath(target);
    }
    QString Archive() const { return QDir(target).filePath(QLatin1String(kBackupArchiveName)); }
    int16_t Backup(const QString& password = {}, const QStringList& files = BackupFileNames()) {
        return ZipAddFiles({Archive(), data.Path(), files, password}, events);
    }
    // The names in the target folder other than the archive: what a job left behind.
    QStringList Leftovers() const {
        QStringList names = QDir(target).entryList(QDir::Files | QDir::Hidden);
        names.removeAll(QLatin1String(kBackupArchiveName));
        return names;
    }
    QStringList ListedNames(const QString& password = {}) const {
        QStringList names;
        for (const ZipEntryInfo& entry : ListArchive(Archive(), password))
            names << entry.Name;
        return names;
    }
    TestFolder data;
    QTemporaryDir dir;
    QString target;
    RecordingEvents events;
};

} // namespace

TEST(ZipArchive, ABackupHoldsTheThreeDatabasesAndOtherToolsAcceptIt) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    EXPECT_EQ(b.ListedNames(), BackupFileNames());
    const ToolRun unzip = RunTool("unzip", {"-t", b.Archive()});
    EXPECT_EQ(unzip.exitCode, 0) << unzip.output.toStdString();
    EXPECT_TRUE(unzip.output.contains("No errors detected")) << unzip.output.toStdString();
    const ToolRun sevenZip = RunTool("7z", {"t", b.Archive()});
    EXPECT_EQ(sevenZip.exitCode, 0) << sevenZip.output.toStdString();
    EXPECT_TRUE(sevenZip.output.contains("Everything is Ok")) << sevenZip.output.toStdString();
    EXPECT_EQ(ZipTestArchive(b.Archive(), {}), zipcode::kSuccess);
}

TEST(ZipArchive, TheArchiveIsTheUsersAloneWhateverTheOldOneAllowed) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    EXPECT_TRUE(IsOwnerOnly(b.Archive()));
    QFile::setPermissions(b.Archive(), QFile::ReadOwner | QFile::WriteOwner | QFile::ReadGroup |
                                           QFile::ReadOther);
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    EXPECT_TRUE(IsOwnerOnly(b.Archive()));
}

TEST(ZipArchive, EachFileIsAnnouncedBeforeItsPercentsAndTheBarEndsFull) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    QStringList starts;
    for (const QString& line : b.events.log)
        if (line.startsWith("add "))
            starts << line.mid(4);
    EXPECT_EQ(starts, BackupFileNames());
    // Every file's percents follow its start, rise, and end at 100.
    int lastPercent = -1;
    for (const QString& line : b.events.log) {
        if (line.startsWith("add ")) {
            EXPECT_TRUE(lastPercent == -1 || lastPercent == 100) << line.toStdString();
            lastPercent = -1;
            continue;
        }
        const int percent = line.mid(5).toInt();
        EXPECT_GT(percent, lastPercent) << line.toStdString();
        lastPercent = percent;
    }
    EXPECT_EQ(lastPercent, 100);
    ASSERT_FALSE(b.events.overall.isEmpty());
    EXPECT_EQ(b.events.overall.last(), 100);
    EXPECT_TRUE(std::is_sorted(b.events.overall.begin(), b.events.overall.end()));
    EXPECT_GT(b.events.idles, 0);
}

TEST(ZipArchive, SizesDatesAndCompressedSizesAreThoseOfTheFilesAndTheArchive) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    for (const ZipEntryInfo& entry : ListArchive(b.Archive(), {})) {
        const QFileInfo file(b.data.File(entry.Name));
        EXPECT_EQ(b.events.sizes.value(entry.Name), file.size()) << entry.Name.toStdString();
        EXPECT_EQ(entry.Size, file.size());
        EXPECT_EQ(b.events.compressed.value(entry.Name), entry.CompressedSize);
        EXPECT_LT(entry.CompressedSize, entry.Size); // deflated
        EXPECT_EQ(b.events.dates.value(entry.Name), ZipDateText(file.lastModified()));
        // The archive keeps times to two seconds.
        EXPECT_LE(std::abs(entry.Modified.secsTo(file.lastModified())), 2);
        EXPECT_FALSE(entry.Encrypted);
    }
}

TEST(ZipArchive, ExtractedFilesEqualTheOriginalsByteForByte) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    for (const QString& name : BackupFileNames()) {
        const QString out = b.dir.filePath(name + ".restore");
        ExtractEntry(b.Archive(), name, {}, out);
        EXPECT_EQ(ReadAll(out), ReadAll(b.data.File(name))) << name.toStdString();
        EXPECT_TRUE(IsOwnerOnly(out));
    }
    EXPECT_THROW(ExtractEntry(b.Archive(), "Video.MDB", {}, b.dir.filePath("x")), Fault);
    EXPECT_FALSE(QFileInfo::exists(b.dir.filePath("x")));
}

TEST(ZipArchive, APasswordEncryptsEveryFileWithAes) {
    Bench b;
    ASSERT_EQ(b.Backup("s3cret"), zipcode::kSuccess);
    for (const ZipEntryInfo& entry : ListArchive(b.Archive(), {}))
        EXPECT_TRUE(entry.Encrypted) << entry.Name.toStdString();
    const ToolRun right = RunTool("7z", {"t", "-ps3cret", b.Archive()});
    EXPECT_EQ(right.exitCode, 0) << right.output.toStdString();
    EXPECT_TRUE(right.output.contains("Everything is Ok")) << right.output.toStdString();
    const ToolRun listed = RunTool("7z", {"l", "-slt", "-ps3cret", b.Archive()});
    EXPECT_EQ(listed.output.count("Method = AES-256 Deflate"), 3) << listed.output.toStdString();
    const ToolRun wrong = RunTool("7z", {"t", "-pwrong", b.Archive()});
    EXPECT_NE(wrong.exitCode, 0) << wrong.output.toStdString();
    // The bytes come back with the password only.
    const QString out = b.dir.filePath("Tarvex.MDB.restore");
    ExtractEntry(b.Archive(), "Tarvex.MDB", "s3cret", out);
    EXPECT_EQ(ReadAll(out), ReadAll(b.data.File("Tarvex.MDB")));
    EXPECT_THROW(ExtractEntry(b.Archive(), "Tarvex.MDB", "wrong", out), Fault);
    EXPECT_FALSE(QFileInfo::exists(out)); // a failed extract leaves no file of that name
    EXPECT_THROW(ExtractEntry(b.Archive(), "Tarvex.MDB", {}, out), Fault);
    EXPECT_THROW(ListArchive(b.Archive(), "wrong"), Fault);
    EXPECT_EQ(ListArchive(b.Archive(), "s3cret").size(), 3u);
}

TEST(ZipArchive, TestingWithAWrongOrNoPasswordSkipsEveryFile) {
    Bench b;
    ASSERT_EQ(b.Backup("s3cret"), zipcode::kSuccess);
    EXPECT_EQ(ZipTestArchive(b.Archive(), "s3cret", b.events), zipcode::kSuccess);
    EXPECT_TRUE(b.events.skipped.isEmpty());
    EXPECT_EQ(ZipTestArchive(b.Archive(), "wrong", b.events), zipcode::kNothingTested);
    EXPECT_EQ(b.events.skipped,
              QStringList({"Tarvex.MDB: 5", "Exercise Library.MDB: 5", "Picklist.MDB: 5"}));
    b.events.skipped.clear();
    EXPECT_EQ(ZipTestArchive(b.Archive(), {}, b.events), zipcode::kNothingTested);
    EXPECT_EQ(b.events.skipped.size(), 3);
    // A plain archive does not need the password it is given.
    Bench plain;
    ASSERT_EQ(plain.Backup(), zipcode::kSuccess);
    EXPECT_EQ(ZipTestArchive(plain.Archive(), "anything"), zipcode::kSuccess);
}

TEST(ZipArchive, AMissingFileIsSkippedAndTheOthersGoIn) {
    Bench b;
    EXPECT_EQ(b.Backup({}, {"Tarvex.MDB", "Missing.MDB"}), zipcode::kFilesSkipped);
    EXPECT_EQ(b.events.skipped, QStringList{"Missing.MDB: 0"});
    EXPECT_EQ(b.ListedNames(), QStringList{"Tarvex.MDB"});
    // With none left, the old archive stays as it was.
    const QByteArray old = ReadAll(b.Archive());
    EXPECT_EQ(b.Backup({}, {"Missing.MDB"}), zipcode::kFilesSkipped);
    EXPECT_EQ(ReadAll(b.Archive()), old);
}

TEST(ZipArchive, AnAbortLeavesTheOldArchiveWholeAndNothingBehind) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    const QByteArray old = ReadAll(b.Archive());
    b.events.onIdle = [&](int) { b.events.abort = true; };
    EXPECT_EQ(b.Backup("changed"), zipcode::kAborted);
    EXPECT_EQ(ReadAll(b.Archive()), old);
    EXPECT_TRUE(b.Leftovers().isEmpty()) << b.Leftovers().join(", ").toStdString();
}

TEST(ZipArchive, AFaultInAnEventEndsTheJobAndGoesOnToTheCaller) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    const QByteArray old = ReadAll(b.Archive());
    b.events.onIdle = [](int) { throw Fault("the window went away"); };
    EXPECT_THROW(b.Backup("changed"), Fault);
    EXPECT_EQ(ReadAll(b.Archive()), old);
    EXPECT_TRUE(b.Leftovers().isEmpty());
}

TEST(ZipArchive, ATargetFolderRemovedDuringTheJobFailsWithTheTemporaryFile) {
    Bench b;
    b.events.onIdle = [&](int idle) {
        if (idle == 1)
            QDir(b.target).removeRecursively();
    };
    EXPECT_EQ(b.Backup(), zipcode::kTemporaryFile);
    EXPECT_FALSE(QFileInfo::exists(b.target));
}

TEST(ZipArchive, AFullTargetGivesDiskFullAndLeavesNothing) {
    Bench b;
    // Room for less than the compressed databases (about 35 KB).
    TmpfsMount full(b.target, "size=16k");
    if (!full.Mounted())
        GTEST_SKIP() << "mounting a small file system is not permitted here";
    EXPECT_EQ(b.Backup(), zipcode::kDiskFull);
    EXPECT_FALSE(QFileInfo::exists(b.Archive()));
    EXPECT_TRUE(b.Leftovers().isEmpty()) << b.Leftovers().join(", ").toStdString();
}

TEST(ZipArchive, AReadOnlyTargetGivesACreateError) {
    Bench b;
    TmpfsMount readOnly(b.target, "ro,size=64k");
    if (!readOnly.Mounted())
        GTEST_SKIP() << "mounting a read-only file system is not permitted here";
    EXPECT_EQ(b.Backup(), zipcode::kCreateError);
}

TEST(ZipArchive, ACutShortArchiveOrOneThatIsNoZipIsReported) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    const QByteArray whole = ReadAll(b.Archive());
    const QString cut = b.dir.filePath("cut.zip");
    WriteAll(cut, whole.left(whole.size() * 6 / 10));
    const QString text = b.dir.filePath("text.zip");
    WriteAll(text, "This is a letter, not an archive.\n");
    const QString empty = b.dir.filePath("empty.zip");
    WriteAll(empty, {});
    for (const QString& path : {cut, text, empty}) {
        EXPECT_EQ(ZipTestArchive(path, {}), zipcode::kCorrupted) << path.toStdString();
        EXPECT_THROW(ListArchive(path, {}), Fault) << path.toStdString();
        EXPECT_THROW(ExtractEntry(path, "Tarvex.MDB", {}, b.dir.filePath("out")), Fault);
    }
    try {
        ListArchive(cut, {});
    } catch (const Fault& fault) {
        EXPECT_TRUE(fault.Message().contains("cut short")) << fault.what();
    }
    const QString missing = b.dir.filePath("missing.zip");
    EXPECT_EQ(ZipTestArchive(missing, {}), zipcode::kArchiveNotFound);
    EXPECT_THROW(ListArchive(missing, {}), Fault);
}

TEST(ZipArchive, DamagedDataFailsTheTestAndTheExtract) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    QByteArray bytes = ReadAll(b.Archive());
    // Into the first file's compressed data, behind its local header.
    const auto u16 = [&](int at) { return uchar(bytes[at]) | uchar(bytes[at + 1]) << 8; };
    const int data = 30 + u16(26) + u16(28);
    bytes[data + 200] = static_cast<char>(bytes[data + 200] ^ 0x5A);
    WriteAll(b.Archive(), bytes);
    EXPECT_EQ(ZipTestArchive(b.Archive(), {}), zipcode::kTestFailed);
    EXPECT_THROW(ExtractEntry(b.Archive(), "Tarvex.MDB", {}, b.dir.filePath("out")), Fault);
    EXPECT_FALSE(QFileInfo::exists(b.dir.filePath("out")));
    // The other files are sound.
    ExtractEntry(b.Archive(), "Picklist.MDB", {}, b.dir.filePath("out"));
    EXPECT_EQ(ReadAll(b.dir.filePath("out")), ReadAll(b.data.File("Picklist.MDB")));
}

TEST(ZipArchive, EntryNamesAreNeverTakenAsPaths) {
    Bench b;
    int error = 0;
    zip_t* zip = zip_open(QFile::encodeName(b.Archive()).constData(), ZIP_CREATE, &error);
    ASSERT_NE(zip, nullptr);
    static const char kBytes[] = "escaped";
    for (const char* name : {"../escape.MDB", "/tmp/absolute.MDB"}) {
        zip_source_t* source = zip_source_buffer(zip, kBytes, sizeof kBytes - 1, 0);
        ASSERT_GE(zip_file_add(zip, name, source, ZIP_FL_ENC_UTF_8), 0);
    }
    ASSERT_EQ(zip_close(zip), 0);
    EXPECT_EQ(b.ListedNames(), QStringList({"../escape.MDB", "/tmp/absolute.MDB"}));
    const QString out = b.dir.filePath("target/out.restore");
    ExtractEntry(b.Archive(), "../escape.MDB", {}, out);
    EXPECT_EQ(ReadAll(out), "escaped");
    EXPECT_FALSE(QFileInfo::exists(b.dir.filePath("escape.MDB")));
    EXPECT_FALSE(QFileInfo::exists(b.target + "/../escape.MDB"));
}

TEST(ZipArchive, FixSalvagesACutShortArchive) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    const QByteArray whole = ReadAll(b.Archive());
    WriteAll(b.Archive(), whole.left(whole.size() * 7 / 10));
    ASSERT_EQ(ZipTestArchive(b.Archive(), {}), zipcode::kCorrupted);
    EXPECT_EQ(ZipFixArchive(b.Archive(), true, b.events), zipcode::kSuccess);
    const std::vector<ZipEntryInfo> saved = ListArchive(b.Archive(), {});
    ASSERT_FALSE(saved.empty());
    EXPECT_EQ(saved.front().Name, "Tarvex.MDB");
    EXPECT_TRUE(IsOwnerOnly(b.Archive()));
    EXPECT_TRUE(b.Leftovers().isEmpty()) << b.Leftovers().join(", ").toStdString();
}

TEST(ZipArchive, FixGivesUpOnAFileWithNothingToSaveAndLeavesIt) {
    Bench b;
    WriteAll(b.Archive(), QByteArray(5000, 'x'));
    EXPECT_EQ(ZipFixArchive(b.Archive(), true, b.events), zipcode::kCorrupted);
    EXPECT_EQ(ReadAll(b.Archive()), QByteArray(5000, 'x'));
    EXPECT_TRUE(b.Leftovers().isEmpty()) << b.Leftovers().join(", ").toStdString();
    // The plain fix does not even try a file without the archive's end.
    EXPECT_EQ(ZipFixArchive(b.Archive(), false, b.events), zipcode::kCorrupted);
    EXPECT_EQ(ZipFixArchive(b.dir.filePath("missing.zip"), true, b.events),
              zipcode::kArchiveNotFound);
}

TEST(ZipArchive, FixLeavesASoundArchiveSound) {
    Bench b;
    ASSERT_EQ(b.Backup(), zipcode::kSuccess);
    EXPECT_EQ(ZipFixArchive(b.Archive(), true, b.events), zipcode::kSuccess);
    EXPECT_EQ(ZipTestArchive(b.Archive(), {}), zipcode::kSuccess);
    EXPECT_EQ(b.ListedNames(), BackupFileNames());
}
