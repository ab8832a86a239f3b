#include "exercise/ExerciseRows.h"

#include "data/NullValues.h"

namespace tarvex {

const QStringList& ExerciseRowColumns() {
    static const QStringList columns = {
        "ExerciseID", "code",     "Desc",      "AbbrevDesc", "Reps",     "Hold",      "Sets",
        "Movie",      "Icon",     "Picture0",  "Picture1",   "Picture2", "Instruct0", "Instruct1",
        "Instruct2",  "HasVideo", "VideoReps", "VideoHold",  "VideoSets"};
    return columns;
}

QVariantList ExerciseRowValues(const ExerciseEntry& e) {
    return {e.ExerciseID, e.Code,      e.Desc,      e.AbbrevDesc, e.Reps,
            e.Hold,       e.Sets,      e.Movie,     e.Icon,       e.Picture0,
            e.Picture1,   e.Picture2,  e.Instruct0, e.Instruct1,  e.Instruct2,
            e.HasVideo,   e.VideoReps, e.VideoHold, e.VideoSets};
}

ExerciseRowReader::ExerciseRowReader(const QSqlRecord& r)
    : abbrev_(r.indexOf("AbbrevDesc")), desc_(r.indexOf("Desc")), icon_(r.indexOf("Icon")),
      movie_(r.indexOf("Movie")), i0_(r.indexOf("Instruct0")), i1_(r.indexOf("Instruct1")),
      i2_(r.indexOf("Instruct2")), p0_(r.indexOf("Picture0")), p1_(r.indexOf("Picture1")),
      p2_(r.indexOf("Picture2")), code_(r.indexOf("code")), id_(r.indexOf("ExerciseID")),
      hold_(r.indexOf("Hold")), reps_(r.indexOf("Reps")), sets_(r.indexOf("Sets")),
      hasVideo_(r.indexOf("HasVideo")), vReps_(r.indexOf("VideoReps")),
      vHold_(r.indexOf("VideoHold")), vSets_(r.indexOf("VideoSets")) {}

void ExerciseRowReader::Read(const QSqlQuery& row, ExerciseEntry& e) const {
    e.AbbrevDesc = NullToText(row.value(abbrev_));
    e.Desc = NullToText(row.value(desc_));
    e.Icon = NullToText(row.value(icon_));
    e.Movie = NullToText(row.value(movie_));
    e.Instruct0 = NullToText(row.value(i0_));
    e.Instruct1 = NullToText(row.value(i1_));
    e.Instruct2 = NullToText(row.value(i2_));
    e.Picture0 = NullToText(row.value(p0_));
    e.Picture1 = NullToText(row.value(p1_));
    e.Picture2 = NullToText(row.value(p2_));
    e.Code = RequiredText(row.value(code_), "code");
    e.ExerciseID = RequiredInt32(row.value(id_), "ExerciseID");
    e.Hold = RequiredInt16(row.value(hold_), "Hold");
    e.Reps = RequiredInt16(row.value(reps_), "Reps");
    e.Sets = RequiredInt16(row.value(sets_), "Sets");
    e.HasVideo = RequiredBool(row.value(hasVideo_), "HasVideo");
    e.VideoReps = NullToInt(row.value(vReps_));
    e.VideoHold = NullToInt(row.value(vHold_));
    e.VideoSets = NullToInt(row.value(vSets_));
}

} // namespace tarvex
