#include "data/Databases.h"
#include "data/Schema.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QSqlQuery>
#include <functional>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::testing::TestFolder;

namespace {

struct Snapshot {
    QByteArray hash;
    QDateTime modified;
    bool operator==(const Snapshot&) const = default;
};

Snapshot Take(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {"<unreadable>", {}};
    return {QCryptographicHash::hash(file.readAll(), QCryptographicHash::Sha256),
            QFileInfo(path).lastModified()};
}

void Overwrite(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
    ASSERT_EQ(file.write(bytes), bytes.size());
}

QByteArray Read(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// The first page of the table's b-tree, in a file closed by everyone.
qint64 RootPageOf(TestFolder& folder, const QString& fileName, const QString& table) {
    qint64 page = -1;
    folder.WithDatabase(fileName, [&](QSqlDatabase& db) {
        QSqlQuery q(db);
        q.prepare("SELECT rootpage FROM sqlite_master WHERE name = ?");
        q.addBindValue(table);
        if (q.exec() && q.next())
            page = q.value(0).toLongLong();
        QSqlQuery(db).exec("PRAGMA journal_mode = DELETE");
    });
    return page;
}

struct Damage {
    const char* name;
    std::function<void(TestFolder&, const QString& file)> make;
    const char* expectedCause;
};

class DamagedDatabase : public ::testing::TestWithParam<std::tuple<const char*, int>> {};

const Damage& DamageAt(int index) {
    static const std::vector<Damage> kinds = {
        {"zero bytes", [](TestFolder& f, const QString& n) { Overwrite(f.File(n), {}); },
         "the file is empty (0 bytes)"},
        {"truncated",
         [](TestFolder& f, const QString& n) { Overwrite(f.File(n), Read(f.File(n)).left(60)); },
         "the file is cut short (60 bytes)"},
        {"truncated to half a page",
         [](TestFolder& f, const QString& n) {
             Overwrite(f.File(n), Read(f.File(n)).left(4096 + 2048));
         },
         "the file is damaged"},
        {"random bytes",
         [](TestFolder& f, const QString& n) {
             QByteArray noise(40000, '\0');
             QRandomGenerator generator(7);
             for (char& c : noise)
                 c = static_cast<char>(generator.bounded(256));
             Overwrite(f.File(n), noise);
         },
         "the file is not a database (it does not begin as one)"},
        {"a folder",
         [](TestFolder& f, const QString& n) {
             ASSERT_TRUE(QFile::remove(f.File(n)));
             ASSERT_TRUE(QDir(f.Path()).mkdir(n));
         },
         "there is a folder of that name where the file should be"},
        {"another program's database",
         [](TestFolder& f, const QString& n) {
             ASSERT_TRUE(QFile::remove(f.File(n)));
             ASSERT_TRUE(QFile::copy(
                 f.File(n == QLatin1String(kPicklistDbFile) ? kProgramDbFile : kPicklistDbFile),
                 f.File(n)));
         },
         "not one of this program (it has no table"},
    };
    return kinds.at(index);
}

const char* kFiles[] = {kProgramDbFile, kLibraryDbFile, kPicklistDbFile};

} // namespace

TEST_P(DamagedDatabase, IsNamedAsDamagedAndLeftUnwritten) {
    const auto [fileName, kind] = GetParam();
    const Damage& damage = DamageAt(kind);
    TestFolder folder;
    const QString path = folder.File(fileName);
    damage.make(folder, fileName);
    const Snapshot before = Take(path);
    try {
        OpenDatabases(folder.state);
        FAIL() << damage.name << " " << fileName << " was opened";
    } catch (const DatabaseFault& fault) {
        const QString text = fault.Message();
        EXPECT_TRUE(text.contains(QDir::toNativeSeparators(path))) << text.toStdString();
        EXPECT_TRUE(text.contains(damage.expectedCause)) << text.toStdString();
        EXPECT_TRUE(text.contains("damaged, or it is not a database of TVX Regimenter"))
            << text.toStdString();
        EXPECT_TRUE(text.contains("Database > Rebuild")) << text.toStdString();
        EXPECT_TRUE(text.contains("backup")) << text.toStdString();
    }
    EXPECT_FALSE(folder.state.Dbs.IsOpen());
    EXPECT_TRUE(Take(path) == before) << damage.name << ": the file was written";
}

INSTANTIATE_TEST_SUITE_P(EachFileAndDamage, DamagedDatabase,
                         ::testing::Combine(::testing::ValuesIn(kFiles), ::testing::Range(0, 6)),
                         [](const auto& info) {
                             QString name = QStringLiteral("%1_%2").arg(
                                 QLatin1String(std::get<0>(info.param)),
                                 QLatin1String(DamageAt(std::get<1>(info.param)).name));
                             for (QChar& c : name)
                                 if (!c.isLetterOrNumber())
                                     c = QLatin1Char('_');
                             return name.toStdString();
                         });

TEST(DamagedDatabase, DamagedPagesAreFoundAtOpenNotAtTheFirstQuery) {
    TestFolder folder;
    const QString path = folder.File(kProgramDbFile);
    // A patient, so that the table has a page of its own to damage.
    folder.WithDatabase(kProgramDbFile, [](QSqlDatabase& db) {
        QSqlQuery(db).exec("INSERT INTO Patient (LastName, FullName) VALUES ('Ng', 'Ng, Lee')");
    });
    const qint64 root = RootPageOf(folder, kProgramDbFile, "Patient");
    ASSERT_GT(root, 1);
    QByteArray bytes = Read(path);
    const qint64 pageSize = 4096;
    ASSERT_GE(bytes.size(), root * pageSize);
    // The page's header: its kind and cell count become nonsense.
    for (int i = 0; i < 12; ++i)
        bytes[static_cast<qsizetype>((root - 1) * pageSize + i)] = static_cast<char>(0x7F);
    Overwrite(path, bytes);
    const Snapshot before = Take(path);
    try {
        OpenDatabases(folder.state);
        FAIL() << "a database with a damaged page was opened";
    } catch (const DatabaseFault& fault) {
        const QString text = fault.Message();
        EXPECT_TRUE(text.contains(QDir::toNativeSeparators(path))) << text.toStdString();
        EXPECT_TRUE(text.contains("the file is damaged (")) << text.toStdString();
    }
    EXPECT_TRUE(Take(path) == before);
}

TEST(DamagedDatabase, AReadOnlyFileIsNamedAndLeftAlone) {
    TestFolder folder;
    const QString path = folder.File(kPicklistDbFile);
    ASSERT_TRUE(QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::ReadUser));
    const Snapshot before = Take(path);
    try {
        OpenDatabases(folder.state);
        FAIL() << "a read-only database was opened";
    } catch (const DatabaseFault& fault) {
        const QString text = fault.Message();
        EXPECT_TRUE(text.contains(QDir::toNativeSeparators(path))) << text.toStdString();
        EXPECT_TRUE(text.contains("is read-only")) << text.toStdString();
    }
    EXPECT_TRUE(Take(path) == before);
    QFile::setPermissions(path, QFileDevice::ReadOwner | QFileDevice::WriteOwner);
}

TEST(DamagedDatabase, AHealthyFolderStillOpensAfterTheChecks) {
    TestFolder folder;
    OpenDatabases(folder.state);
    EXPECT_TRUE(folder.state.Dbs.IsOpen());
    CloseDatabases(folder.state);
}
