#include "picturebench/BenchScript.h"

#include "picturebench/PictureDocument.h"

#include <QLocale>
#include <QRegularExpression>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace tarvex {

namespace {

// What follows a command on its line.
enum class Shape {
    Nothing,      // grey, undo, redo
    Path,         // open: the rest of the line, which must be there
    OptionalPath, // save: the rest of the line, if any
    Values,       // a fixed count of values (numbers, or h|v for flip)
    Words,        // text: two numbers, then the rest of the line
};

struct Rule {
    const char* name;
    Shape shape;
    int values;        // for Values, and the numbers before the words of Words
    const char* usage; // as the error texts show it
};

constexpr Rule kRules[] = {
    {"open", Shape::Path, 0, "open PATH"},
    {"crop", Shape::Values, 4, "crop X Y W H"},
    {"rotate", Shape::Values, 1, "rotate 90|-90"},
    {"flip", Shape::Values, 1, "flip h|v"},
    {"straighten", Shape::Values, 1, "straighten DEGREES"},
    {"brightness", Shape::Values, 1, "brightness N"},
    {"contrast", Shape::Values, 1, "contrast N"},
    {"grey", Shape::Nothing, 0, "grey"},
    {"drawing", Shape::Values, 1, "drawing N"},
    {"arrow", Shape::Values, 4, "arrow X1 Y1 X2 Y2"},
    {"line", Shape::Values, 4, "line X1 Y1 X2 Y2"},
    {"text", Shape::Words, 2, "text X Y WORDS"},
    {"undo", Shape::Nothing, 0, "undo"},
    {"redo", Shape::Nothing, 0, "redo"},
    {"save", Shape::OptionalPath, 0, "save PATH"},
};

const Rule* FindRule(const QString& command) {
    const auto* found = std::find_if(std::begin(kRules), std::end(kRules), [&](const Rule& rule) {
        return command == QLatin1String(rule.name);
    });
    return found == std::end(kRules) ? nullptr : found;
}

const QRegularExpression& Blanks() {
    static const QRegularExpression blanks(QStringLiteral("\\s+"));
    return blanks;
}

// Up to count words from the front of the text, and what is left after them (trimmed).
std::pair<QStringList, QString> SplitFront(const QString& text, int count) {
    QStringList words;
    QString rest = text.trimmed();
    while (words.size() < count && !rest.isEmpty()) {
        const QRegularExpressionMatch blank = Blanks().match(rest);
        if (!blank.hasMatch()) {
            words << rest;
            rest.clear();
        } else {
            words << rest.left(blank.capturedStart());
            rest = rest.mid(blank.capturedEnd());
        }
    }
    return {words, rest};
}

std::optional<double> Number(const QString& text) {
    bool ok = false;
    const double value = QLocale::c().toDouble(text, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

// The checks of one value; each gives an empty text when the value is right.
QString NotANumber(const QString& text) {
    return QStringLiteral("\"%1\" is not a number.").arg(text);
}

QString CheckRange(const QString& text, double low, double high, const QString& what) {
    const std::optional<double> value = Number(text);
    if (!value)
        return NotANumber(text);
    if (*value < low || *value > high)
        return QStringLiteral("%1 is outside %2 to %3 (%4).")
            .arg(text, QString::number(low), QString::number(high), what);
    return {};
}

QString CheckWhole(const QString& text, int low, int high, const QString& what) {
    bool ok = false;
    const int value = text.toInt(&ok);
    if (!ok)
        return Number(text) ? QStringLiteral("%1 is not a whole number.").arg(text)
                            : NotANumber(text);
    if (value < low || value > high)
        return QStringLiteral("%1 is outside %2 to %3 (%4).")
            .arg(text)
            .arg(low)
            .arg(high)
            .arg(what);
    return {};
}

QString CheckFractions(const QStringList& args, qsizetype count) {
    for (qsizetype i = 0; i < count; ++i)
        if (QString error = CheckRange(args[i], 0, 1, QStringLiteral("a fraction of the picture"));
            !error.isEmpty())
            return error;
    return {};
}

// What is wrong with the values of a step whose command and count are right.
QString CheckValues(const ScriptStep& step) {
    const QString& command = step.command;
    const QStringList& args = step.args;
    if (command == u"crop") {
        if (QString error = CheckFractions(args, 4); !error.isEmpty())
            return error;
        if (*Number(args[2]) <= 0 || *Number(args[3]) <= 0)
            return QStringLiteral("the crop box has no width or no height.");
        return {};
    }
    if (command == u"rotate") {
        if (args[0] != u"90" && args[0] != u"-90")
            return QStringLiteral("\"%1\" is no turn: rotate takes 90 (clockwise) or -90.")
                .arg(args[0]);
        return {};
    }
    if (command == u"flip") {
        if (args[0] != u"h" && args[0] != u"v")
            return QStringLiteral("\"%1\" is no side: flip takes h (left and right) or v (top "
                                  "and bottom).")
                .arg(args[0]);
        return {};
    }
    if (command == u"straighten")
        return CheckRange(args[0], -45, 45, QStringLiteral("degrees"));
    if (command == u"brightness" || command == u"contrast")
        return CheckWhole(args[0], -100, 100, command);
    if (command == u"drawing")
        return CheckWhole(args[0], 1, 100, QStringLiteral("the strength"));
    if (command == u"arrow" || command == u"line")
        return CheckFractions(args, 4);
    if (command == u"text")
        return CheckFractions(args, 2);
    return {};
}

// What is wrong with the step: its command, its count of arguments or their values.
QString CheckStep(const ScriptStep& step) {
    const Rule* rule = FindRule(step.command);
    if (!rule)
        return QStringLiteral("unknown command \"%1\".").arg(step.command);
    const QString usage = QLatin1String(rule->usage);
    const qsizetype count = step.args.size();
    switch (rule->shape) {
    case Shape::Nothing:
        if (count != 0)
            return QStringLiteral("%1 takes nothing after it.").arg(usage);
        return {};
    case Shape::Path:
        if (count != 1 || step.args[0].trimmed().isEmpty())
            return QStringLiteral("a path is missing (%1).").arg(usage);
        return {};
    case Shape::OptionalPath:
        if (count > 1)
            return QStringLiteral("one path at most (%1).").arg(usage);
        return {};
    case Shape::Values:
        if (count != rule->values)
            return QStringLiteral("%1 needs %2 %3, not %4.")
                .arg(usage)
                .arg(rule->values)
                .arg(rule->values == 1 ? QStringLiteral("value") : QStringLiteral("values"))
                .arg(count);
        return CheckValues(step);
    case Shape::Words:
        if (count != rule->values + 1 || step.args.last().trimmed().isEmpty())
            return QStringLiteral("a position and the words are needed (%1).").arg(usage);
        return CheckValues(step);
    }
    return {};
}

// The arguments of a line, as the command's rule divides them.
QStringList ArgsOf(const Rule& rule, const QString& rest) {
    switch (rule.shape) {
    case Shape::Nothing:
    case Shape::Values:
        return rest.split(Blanks(), Qt::SkipEmptyParts);
    case Shape::Path:
    case Shape::OptionalPath:
        return rest.isEmpty() ? QStringList() : QStringList{rest};
    case Shape::Words: {
        auto [numbers, words] = SplitFront(rest, rule.values);
        if (!words.isEmpty())
            numbers << words;
        return numbers;
    }
    }
    return {};
}

QString WithLine(const ScriptStep& step, const QString& error) {
    if (error.isEmpty() || step.line <= 0)
        return error;
    return QStringLiteral("Line %1: %2").arg(step.line).arg(error);
}

// A position of the script (fractions) in pixels of the picture.
QPointF At(const QImage& image, const QString& x, const QString& y) {
    return {*Number(x) * image.width(), *Number(y) * image.height()};
}

void DrawStep(PictureDocument& document, const ScriptStep& step) {
    const QImage& image = document.Image();
    Mark mark;
    mark.from = At(image, step.args[0], step.args[1]);
    if (step.command == u"text") {
        mark.kind = Mark::Kind::Text;
        mark.text = step.args[2];
    } else {
        mark.kind = step.command == u"arrow" ? Mark::Kind::Arrow : Mark::Kind::Line;
        mark.to = At(image, step.args[2], step.args[3]);
    }
    document.Draw(mark);
}

QString UndoStep(PictureDocument& document, bool undo) {
    QUndoStack* stack = document.UndoStack();
    if (undo ? !stack->canUndo() : !stack->canRedo())
        return undo ? QStringLiteral("there is nothing to undo.")
                    : QStringLiteral("there is nothing to redo.");
    if (undo)
        stack->undo();
    else
        stack->redo();
    return {};
}

QString Run(PictureDocument& document, const ScriptStep& step, const QString& defaultSaveTarget) {
    const QString& command = step.command;
    const QStringList& args = step.args;
    if (command == u"open")
        return document.Open(args[0]) ? QString() : document.LastError();
    if (command == u"save") {
        const QString target = args.isEmpty() ? defaultSaveTarget : args[0];
        if (target.isEmpty())
            return QStringLiteral("save has no path, and this run has no file to save in.");
        return document.Save(target);
    }
    if (command == u"undo" || command == u"redo")
        return UndoStep(document, command == u"undo");
    if (command == u"crop") {
        const QImage& image = document.Image();
        const QPointF corner = At(image, args[0], args[1]);
        const QRectF wanted(
            corner, QSizeF(*Number(args[2]) * image.width(), *Number(args[3]) * image.height()));
        document.Crop(FitCropBox(wanted, image.size()));
    } else if (command == u"rotate") {
        document.Rotate90(args[0] == u"90");
    } else if (command == u"flip") {
        document.Flip(args[0] == u"h" ? Qt::Horizontal : Qt::Vertical);
    } else if (command == u"straighten") {
        document.Straighten(*Number(args[0]));
    } else if (command == u"brightness") {
        document.BrightnessContrast(args[0].toInt(), 0);
    } else if (command == u"contrast") {
        document.BrightnessContrast(0, args[0].toInt());
    } else if (command == u"grey") {
        document.Greyscale();
    } else if (command == u"drawing") {
        document.DrawingLook(args[0].toInt());
    } else { // arrow, line, text
        DrawStep(document, step);
    }
    return {};
}

} // namespace

std::vector<ScriptStep> ParseBenchScript(const QString& text, QString* error) {
    std::vector<ScriptStep> steps;
    QStringList errors;
    const QStringList lines = text.split(u'\n');
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const QString line = lines[i].trimmed();
        if (line.isEmpty() || line.startsWith(u'#'))
            continue;
        auto [front, rest] = SplitFront(line, 1);
        ScriptStep step{front.value(0).toLower(), {}, static_cast<int>(i + 1)};
        if (const Rule* rule = FindRule(step.command))
            step.args = ArgsOf(*rule, rest);
        if (const QString wrong = CheckStep(step); !wrong.isEmpty())
            errors << WithLine(step, wrong);
        else
            steps.push_back(std::move(step));
    }
    if (error)
        *error = errors.join(u'\n');
    if (!errors.isEmpty())
        steps.clear();
    return steps;
}

QString RunBenchStep(PictureDocument& document, const ScriptStep& step,
                     const QString& defaultSaveTarget) {
    if (const QString wrong = CheckStep(step); !wrong.isEmpty())
        return WithLine(step, wrong);
    return WithLine(step, Run(document, step, defaultSaveTarget));
}

QString RunBenchScript(PictureDocument& document, const std::vector<ScriptStep>& steps,
                       const QString& defaultSaveTarget) {
    for (const ScriptStep& step : steps)
        if (QString error = RunBenchStep(document, step, defaultSaveTarget); !error.isEmpty())
            return error;
    return {};
}

} // namespace tarvex
