#include "picturebench/ScriptedBench.h"

#include "picturebench/BenchService.h"
#include "picturebench/PictureDocument.h"

namespace tarvex {

ScriptedBench::ScriptedBench(PictureDocument& document, BenchService& service,
                             std::vector<ScriptStep> steps, QObject* parent)
    : QObject(parent), document_(document), service_(service), steps_(std::move(steps)) {
    // The target comes second: when it is there, the editor has sent the whole picture.
    connect(&service_, &BenchService::TargetChanged, this, [this] { Run(); });
}

QString ScriptedBench::Run() {
    ++runs_;
    QString error;
    for (const ScriptStep& step : steps_) {
        if (step.command == QLatin1String("save") && step.args.isEmpty()) {
            error = service_.Save();
            if (!error.isEmpty())
                error = QStringLiteral("Line %1: %2").arg(step.line).arg(error);
        } else {
            error = RunBenchStep(document_, step, service_.Target());
        }
        if (!error.isEmpty())
            break;
    }
    if (!error.isEmpty())
        errors_ << error;
    emit Ran(error);
    return error;
}

} // namespace tarvex
