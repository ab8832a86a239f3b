#pragma once

#include <QString>
#include <QStringList>
#include <vector>

namespace tarvex {

class PictureDocument;

// A bench script: edits of Picture Bench written down, for runs without a window and for
// tests. One command a line; blank lines and lines that begin with # are skipped.
// Positions and sizes are fractions (0 to 1) of the current picture's width and height,
// so one script fits a picture of any size:
//
//   open PATH              (the rest of the line, spaces and all)
//   crop X Y W H           (made 4:3 and fitted as a dragged crop box is)
//   rotate 90 | -90        (90 is clockwise)
//   flip h | v
//   straighten DEGREES     (-45 to 45)
//   brightness N           (-100 to 100)
//   contrast N             (-100 to 100)
//   grey
//   drawing N              (strength 1 to 100)
//   arrow X1 Y1 X2 Y2
//   line X1 Y1 X2 Y2
//   text X Y WORDS...      (the words as written, spaces and all)
//   undo
//   redo
//   save [PATH]            (without a path: the run's default target)
struct ScriptStep {
    QString command;
    QStringList args;
    int line = 0; // in the script, from 1
};

// The steps of the script. A script with any wrong line gives no steps, and error says
// each wrong line: its number and what is wrong with it (an unknown command, the wrong
// number of arguments, a value that is no number or out of its range).
std::vector<ScriptStep> ParseBenchScript(const QString& text, QString* error);

// Does the step on the document. An empty text when done, else what went wrong, with the
// step's line. A save without a path saves at defaultSaveTarget.
QString RunBenchStep(PictureDocument& document, const ScriptStep& step,
                     const QString& defaultSaveTarget);

// Does the steps in order up to the first that fails. An empty text when all are done,
// else that step's error.
QString RunBenchScript(PictureDocument& document, const std::vector<ScriptStep>& steps,
                       const QString& defaultSaveTarget);

} // namespace tarvex
