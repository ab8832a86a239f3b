#include "exercise/ParamText.h"

namespace tarvex {

QString ShortParamText(const ExerciseProgram& program, int index) {
    const ExerciseEntry& e = program.Exercise(index);
    QString text = e.AbbrevDesc + QChar(10) + QString::number(e.Reps) + u'r';
    if (e.Hold != 0)
        text += u'/' + QString::number(e.Hold) + u's';
    text += u'/' + QString::number(e.Sets) + u'x';
    return text;
}

QString LongParamText(const ExerciseProgram& program, int index) {
    const ExerciseEntry& e = program.Exercise(index);
    QString text =
        e.Desc + QStringLiteral(", ") + QString::number(e.Reps) + QStringLiteral(" reps");
    if (e.Hold != 0)
        text += QStringLiteral(", ") + QString::number(e.Hold) + QStringLiteral(" sec hold");
    text += QStringLiteral(", ") + QString::number(e.Sets) + QStringLiteral(" set");
    return text;
}

} // namespace tarvex
