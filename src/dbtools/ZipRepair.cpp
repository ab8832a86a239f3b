// The repair of a damaged backup archive with the system's "zip" tool.
#include "dbtools/ZipArchive.h"

#include "dbtools/ZipHandles.h"
#include "support/Fault.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryFile>
#include <zip.h>

#include <algorithm>
#include <exception>
#include <filesystem>
#include <limits>
#include <memory>
#include <system_error>

#ifdef Q_OS_UNIX
#include <unistd.h>
#endif

namespace tarvex {

using namespace zipio;

// --- fixing

namespace {

// How long one run of a Zip tool may take before it is taken for hung.
constexpr int kToolDeadlineMs = 10 * 60 * 1000;

struct ToolRun {
    int16_t Stopped = zipcode::kSuccess; // kAborted, or kToolFailed (not run, or no end in time)
    int ExitCode = -1;
    QByteArray Output;
};

// Runs a Zip tool with an argument list while the events run, so that it can be aborted.
// answers go to its questions; its output is kept only when wanted (a tool that keeps
// asking writes without end).
ToolRun RunZipTool(const QString& name, const QStringList& arguments, const QByteArray& answers,
                   bool keepOutput, IZipEvents& events) {
    const QString program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return {zipcode::kToolFailed, -1, {}};
    QProcess tool;
    if (!keepOutput)
        tool.setStandardOutputFile(QProcess::nullDevice());
    tool.setStandardErrorFile(QProcess::nullDevice());
    tool.start(program, arguments);
    if (!tool.waitForStarted())
        return {zipcode::kToolFailed, -1, {}};
    tool.write(answers);
    tool.closeWriteChannel();
    const QDeadlineTimer deadline(kToolDeadlineMs);
    while (tool.state() != QProcess::NotRunning && !tool.waitForFinished(50)) {
        events.ZipIdle();
        const bool aborted = events.ZipAbortRequested();
        if (aborted || deadline.hasExpired()) {
            tool.kill();
            tool.waitForFinished(-1);
            return {aborted ? zipcode::kAborted : zipcode::kToolFailed, -1, {}};
        }
    }
    const bool clean = tool.exitStatus() == QProcess::NormalExit;
    return {zipcode::kSuccess, clean ? tool.exitCode() : -1, tool.readAllStandardOutput()};
}

// True when libzip takes the archive as sound in its structure and it holds a file.
bool HoldsTogether(const QString& archive) {
    int error = ZIP_ER_OK;
    const ZipHandle zip = OpenForReading(archive, error);
    return zip && zip_get_num_entries(zip.get(), 0) > 0;
}

// zip's salvage keeps the file that a cut went through, with the sizes it had, so the
// archive does not hold together. That file is the last one: it is taken out until the
// archive holds together, or nothing is left.
int16_t DropBrokenTail(const QString& archive, IZipEvents& events) {
    qsizetype before = std::numeric_limits<qsizetype>::max();
    while (!HoldsTogether(archive)) {
        const ToolRun list =
            RunZipTool(QStringLiteral("unzip"), {QStringLiteral("-Z1"), archive}, {}, true, events);
        if (list.Stopped != zipcode::kSuccess)
            return list.Stopped;
        const QStringList names = QString::fromUtf8(list.Output).split(u'\n', Qt::SkipEmptyParts);
        if (list.ExitCode != 0 || names.isEmpty() || names.size() >= before)
            return zipcode::kCorrupted;
        before = names.size();
        const ToolRun drop = RunZipTool(QStringLiteral("zip"),
                                        {QStringLiteral("-d"), archive, QStringLiteral("-nw"),
                                         QStringLiteral("--"), names.last()},
                                        {}, false, events);
        if (drop.Stopped != zipcode::kSuccess)
            return drop.Stopped;
        if (drop.ExitCode != 0)
            return zipcode::kCorrupted;
    }
    return zipcode::kSuccess;
}

} // namespace

int16_t ZipFixArchive(const QString& archive, bool force, IZipEvents& events) {
    if (!QFileInfo(archive).isFile())
        return zipcode::kArchiveNotFound;
    QTemporaryFile fixed(QFileInfo(archive).absolutePath() + QStringLiteral("/~fix-XXXXXX.ZIP"));
    if (!fixed.open())
        return zipcode::kCreateError;
    fixed.close();
    // zip asks whether a damaged archive is a single-disk one and then, if it thinks
    // otherwise, where its next part is, again and again: yes, then quit.
    const ToolRun salvage = RunZipTool(QStringLiteral("zip"),
                                       {force ? QStringLiteral("-FF") : QStringLiteral("-F"),
                                        archive, QStringLiteral("--out"), fixed.fileName()},
                                       "y\nq\nq\nq\nq\n", false, events);
    if (salvage.Stopped != zipcode::kSuccess)
        return salvage.Stopped;
    if (salvage.ExitCode != 0)
        return zipcode::kCorrupted;
    if (const int16_t tail = DropBrokenTail(fixed.fileName(), events); tail != zipcode::kSuccess)
        return tail; // the damaged archive stays as it was
    std::error_code error;
    std::filesystem::rename(FileName(fixed.fileName()).toStdString(),
                            FileName(archive).toStdString(), error);
    if (error)
        return zipcode::kTemporaryFile;
    fixed.setAutoRemove(false);
    QFile::setPermissions(archive, kOwnerOnly);
    return zipcode::kSuccess;
}

} // namespace tarvex
