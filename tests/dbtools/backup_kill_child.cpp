// Backs up the databases of a data folder into an archive, slowly, and says "writing" on
// its standard output once the new archive is being written, so that a test can kill it
// there: backup_kill_child <data folder> <archive>.
#include "data/Schema.h"
#include "dbtools/ZipArchive.h"

#include <QString>
#include <QThread>
#include <cstdio>

namespace {

class SlowEvents : public tarvex::QuietZipEvents {
public:
    void ZipIdle() override {
        std::puts("writing");
        std::fflush(stdout);
        QThread::msleep(200);
    }
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3)
        return 2;
    SlowEvents events;
    const tarvex::ZipAddJob job{QString::fromLocal8Bit(argv[2]),
                                QString::fromLocal8Bit(argv[1]),
                                {QLatin1String(tarvex::kProgramDbFile),
                                 QLatin1String(tarvex::kLibraryDbFile),
                                 QLatin1String(tarvex::kPicklistDbFile)},
                                {}};
    return tarvex::ZipAddFiles(job, events);
}
