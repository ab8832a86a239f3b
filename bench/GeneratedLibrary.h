#pragma once

// A generated library for the benchmarks: rows numbered from 1, each with the columns the
// workspace and the library list read, spread over a few joints and motions, with the
// delivered icons.

#include "data/Sql.h"
#include "support/TestFolder.h"

#include <QSqlQuery>
#include <stdexcept>

namespace tarvex::bench {

inline void FillGeneratedLibrary(tarvex::testing::TestFolder& folder, int rows) {
    folder.WithDatabase("Exercise Library.MDB", [rows](QSqlDatabase& db) {
        Transaction t(db);
        Execute(db, "DELETE * FROM ExerciseLibrary");
        QSqlQuery insert(db);
        insert.prepare("INSERT INTO ExerciseLibrary (ExerciseID, code, \"Desc\", AbbrevDesc, Reps, "
                       "Hold, Sets, "
                       "Joint, Motion, Type, Movie, Icon, Picture0, HasVideo) VALUES "
                       "(?,?,?,?,?,?,?,?,?,?,?,?,?,?)");
        const QStringList joints = {"Neck", "Shoulder", "Hip, Knee", "Ankle", "Lumbar", "Knee"};
        const QStringList motions = {"Flexion", "Extension", "Abduction", "Rotation"};
        for (int i = 1; i <= rows; ++i) {
            const QString icon = QString::number(1 + i % 243) + ".JPG"; // the delivered icons
            const QVariantList v = {i,
                                    QString::number(i),
                                    "Generated exercise " + QString::number(i),
                                    "Gen " + QString::number(i),
                                    10,
                                    0,
                                    2,
                                    joints[i % joints.size()],
                                    motions[i % motions.size()],
                                    "Strengthening",
                                    i % 3 ? "" : "1.AVI",
                                    icon,
                                    QString::number(i) + "_1.JPG",
                                    i % 3 ? 0 : 1};
            for (int k = 0; k < v.size(); ++k)
                insert.bindValue(k, v[k]);
            if (!insert.exec())
                throw std::runtime_error("cannot fill the library");
        }
        t.Commit();
    });
}

} // namespace tarvex::bench
