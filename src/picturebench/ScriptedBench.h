#pragma once

// Picture Bench without a window, for tests and scripted runs: it serves the link, and each
// time the exercise editor has sent a picture (the source, then the target) it does the
// script's edits on it. A "save" without a path saves through the link, as the user's
// Save does, so the editor hears of it.

#include "picturebench/BenchScript.h"

#include <QObject>
#include <QStringList>
#include <vector>

namespace tarvex {

class BenchService;
class PictureDocument;

class ScriptedBench : public QObject {
    Q_OBJECT
public:
    ScriptedBench(PictureDocument& document, BenchService& service, std::vector<ScriptStep> steps,
                  QObject* parent = nullptr);
    // Runs the script on the picture in hand now. An empty text when all went well.
    QString Run();
    int Runs() const { return runs_; }
    QStringList Errors() const { return errors_; }

signals:
    void Ran(const QString& error);

private:
    PictureDocument& document_;
    BenchService& service_;
    std::vector<ScriptStep> steps_;
    int runs_ = 0;
    QStringList errors_;
};

} // namespace tarvex
