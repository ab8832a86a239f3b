// tarvex-picture-bench: the companion picture editor of the exercise library.
//
//   tarvex-picture-bench [PICTURE]            the window; serves the exercise editor's link
//   tarvex-picture-bench --script FILE        no window: serves the link and does the
//                                             script's edits on each picture sent
//   tarvex-picture-bench --script FILE PICTURE
//                                             no window, no link: the script's edits on the
//                                             picture, then the program ends
//
// The library window starts it each time it opens. When a Picture Bench already serves the
// link, a second one started without a picture ends at once and leaves the first to it.

#include "picturebench/BenchScript.h"
#include "picturebench/BenchService.h"
#include "picturebench/PictureDocument.h"
#include "picturebench/ScriptedBench.h"
#include "shell/CommandLine.h"
#include "ui/bench/PictureBenchWindow.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFile>
#include <QGuiApplication>
#include <QMessageBox>
#include <cstdio>
#include <memory>

using namespace tarvex;

namespace {

const QString kHelp = QStringLiteral(
    "Usage: tarvex-picture-bench [PICTURE]\n"
    "       tarvex-picture-bench --script FILE [PICTURE]\n"
    "\n"
    "Picture Bench: crop, straighten and mark the pictures of exercises. TVX Regimenter's\n"
    "library window starts it and sends it the pictures of the exercise being edited.\n"
    "\n"
    "  PICTURE        a picture to open\n"
    "  --script FILE  no window: do the edits of FILE on PICTURE and end, or, without a\n"
    "                 picture, on every picture the exercise editor sends\n"
    "  -h, --help     show this help and end\n"
    "  -v, --version  show the version and end\n"
    "See tarvex-picture-bench(1).");

void Say(const QString& text) {
    std::fprintf(stderr, "tarvex-picture-bench: %s\n", qPrintable(text));
}

std::vector<ScriptStep> ReadScript(const QString& path, QString* error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        *error = QStringLiteral("The script %1 cannot be read: %2").arg(path, file.errorString());
        return {};
    }
    return ParseBenchScript(QString::fromUtf8(file.readAll()), error);
}

// No window: the script on one picture, or on every picture the exercise editor sends.
int RunScripted(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication app(argc, argv);
    QCommandLineParser parser;
    parser.addOption(
        {QStringLiteral("script"), QStringLiteral("The edits to do."), QStringLiteral("file")});
    parser.addPositionalArgument(QStringLiteral("picture"), QStringLiteral("A picture to edit."));
    parser.process(app);
    QString error;
    const std::vector<ScriptStep> steps =
        ReadScript(parser.value(QStringLiteral("script")), &error);
    if (!error.isEmpty()) {
        Say(error);
        return 2;
    }
    PictureDocument document;
    if (!parser.positionalArguments().isEmpty()) {
        const QString picture = parser.positionalArguments().constFirst();
        if (!document.Open(picture)) {
            Say(document.LastError());
            return 1;
        }
        error = RunBenchScript(document, steps, QString());
        if (!error.isEmpty())
            Say(error);
        return error.isEmpty() ? 0 : 1;
    }
    BenchService service(document);
    if (!service.Listen()) {
        Say(service.LinkError());
        return 1;
    }
    ScriptedBench bench(document, service, steps);
    QObject::connect(&bench, &ScriptedBench::Ran, [](const QString& failure) {
        if (!failure.isEmpty())
            Say(failure);
    });
    return QGuiApplication::exec();
}

int RunWindow(int argc, char** argv) {
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tarvex-picture-bench"));
    QApplication::setOrganizationName(QStringLiteral("Tarvex"));
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Picture Bench: crop, straighten and mark the pictures of exercises."));
    parser.addHelpOption();
    parser.addPositionalArgument(QStringLiteral("picture"), QStringLiteral("A picture to open."));
    parser.process(app);
    const QStringList pictures = parser.positionalArguments();

    PictureDocument document;
    BenchService service(document);
    if (!service.Listen() && pictures.isEmpty()) {
        // Another Picture Bench serves the exercise editor already.
        Say(service.LinkError());
        return 0;
    }
    const bool opened = pictures.isEmpty() || service.OpenByUser(pictures.constFirst());
    PictureBenchWindow window(document, service);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.show();
    if (!opened)
        QMessageBox::warning(&window, QStringLiteral("Picture Not Opened"),
                             document.LastError() +
                                 QStringLiteral("\n\nA blank picture is open instead."));
    return QApplication::exec();
}

bool Scripted(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg == "--script" || arg.startsWith("--script="))
            return true;
    }
    return false;
}

} // namespace

int main(int argc, char** argv) {
    // Help and the version need no display. (The rest of the line is read by each mode.)
    const QStringList arguments = ArgumentsOf(argc, argv);
    if (AsksForHelpOrVersion(arguments))
        return PrintCommandLineAnswer(ReadCommandLine(
            arguments, QStringLiteral("tarvex-picture-bench"), kHelp, arguments.size()));
    return Scripted(argc, argv) ? RunScripted(argc, argv) : RunWindow(argc, argv);
}
