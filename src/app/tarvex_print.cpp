// tarvex-print: draws one print job of a stored program into a PDF file, from the same data
// folder and settings as the program, without any window.

#include "data/Databases.h"
#include "print/OrderForm.h"
#include "print/PainterSurface.h"
#include "print/PrintJob.h"
#include "program/ClinicStore.h"
#include "program/ProgramStore.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"
#include "shell/CommandLine.h"
#include "shell/Options.h"
#include "shell/PrivateFiles.h"
#include "shell/SettingsStore.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Prompter.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QSaveFile>
#include <cstdio>
#include <map>

namespace {

using namespace tarvex;

// The windowing side of the shell, which a console run has not got.
class NoCommands : public ICommands {
public:
    void SetEnabled(const QString&, bool) override {}
    bool IsEnabled(const QString&) const override { return false; }
};
class NoStatusBar : public IStatusBar {
public:
    void SetPanelText(int, const QString&) override {}
    QString PanelText(int) const override { return QString(); }
    void Refresh() override {}
};
class NoTitle : public IWindowTitle {
public:
    void SetTitle(const QString& title) override { m_title = title; }
    QString Title() const override { return m_title; }

private:
    QString m_title;
};
class NoPrintDialog : public IPrintDialog {
public:
    bool Show() override { return true; }
};
class NoPrompter : public Prompter {
public:
    Answer MsgBox(const QString&, int, const QString&) override { return Answer::Ok; }
    std::optional<QString> InputBox(const QString&, const QString&, const QString&) override {
        return std::nullopt;
    }
};

// 1 for a job that fails, 2 for a wrong command line.
int Fail(const QString& message, int code = 1) {
    std::fprintf(stderr, "tarvex-print: %s\n", qPrintable(message));
    return code;
}

const std::map<QString, JobKind>& Jobs() {
    static const std::map<QString, JobKind> jobs{{QStringLiteral("order"), kJobVideoOrder},
                                                 {QStringLiteral("ex2"), kJobExercises2},
                                                 {QStringLiteral("ex4"), kJobExercises4},
                                                 {QStringLiteral("cover"), kJobCoverSheet},
                                                 {QStringLiteral("record"), kJobPatientRecord}};
    return jobs;
}

} // namespace

int main(int argc, char** argv) {
    RestrictNewFilesToOwner(); // the data folder holds patient data
    // Fonts need the GUI side of Qt, but never a display.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    // The settings are named in full where they are opened; this name is the one in the messages.
    QGuiApplication::setApplicationName(QStringLiteral("tarvex-print"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral(
        "Prints one job of a stored program into a PDF file.\n"
        "Jobs: ex2 (exercises, 2 a page), ex4 (exercises, 4 a page), record (patient record),\n"
        "cover (cover sheet), order (video order form)."));
    parser.addHelpOption();
    const QCommandLineOption jobOption(QStringLiteral("job"),
                                       QStringLiteral("The job: ex2, ex4, record, cover or order."),
                                       QStringLiteral("job"));
    const QCommandLineOption invoiceOption(QStringLiteral("invoice"),
                                           QStringLiteral("The stored program's number."),
                                           QStringLiteral("N"));
    const QCommandLineOption outOption(QStringLiteral("out"),
                                       QStringLiteral("The PDF file to write."),
                                       QStringLiteral("FILE.pdf"));
    parser.addOptions({jobOption, invoiceOption, outOption});
    if (const auto end = ReadConsoleCommandLine(parser, QCoreApplication::arguments(),
                                                QStringLiteral("tarvex-print")))
        return *end;
    if (!parser.positionalArguments().isEmpty())
        return Fail(QStringLiteral("takes no arguments, but was given \"%1\" (see --help)")
                        .arg(parser.positionalArguments().constFirst()),
                    2);
    if (!parser.isSet(jobOption))
        return Fail(
            QStringLiteral("--job is needed: ex2, ex4, record, cover or order (see --help)"), 2);

    const QString jobName = parser.value(jobOption);
    const auto job = Jobs().find(jobName);
    if (job == Jobs().end())
        return Fail(
            QStringLiteral("unknown job \"%1\": use ex2, ex4, record, cover or order").arg(jobName),
            2);
    bool numberOk = false;
    const int invoice = parser.value(invoiceOption).toInt(&numberOk);
    if (!numberOk)
        return Fail(QStringLiteral("--invoice needs the number of a stored program"), 2);
    const QString out = parser.value(outOption);
    if (out.isEmpty())
        return Fail(QStringLiteral("--out needs the PDF file to write"), 2);
    // The PDF is written under a temporary name and takes the place of the file only when it
    // is whole: a failed job leaves a file that was there as it was.
    QSaveFile pdf(out);
    if (!pdf.open(QIODevice::WriteOnly))
        return Fail(QStringLiteral("cannot write %1: %2").arg(out, pdf.errorString()));

    AppState state;
    state.AppFolder = DefaultAppFolder();
    state.DeliveredFolder = DefaultDeliveredFolder();
    try {
        QtSettingsStore store;
        LoadOptions(state, store);
        const QString problem = PrepareAppFolder(state.AppFolder, TemplatesFolder(state));
        if (!problem.isEmpty())
            return Fail(problem);
        OpenDatabases(state);
        state.TollFreeOrder = QLatin1String(kTollFreeOrder);
        state.TollFreeFax = QLatin1String(kTollFreeFax);
        state.CoverText = LoadCoverText(state);
        ReadClinicRecord(state);

        NoCommands toolbar;
        NoCommands menu;
        NoStatusBar statusBar;
        NoTitle title;
        NoPrintDialog dialog;
        NoPrompter prompter;
        Shell shell(state, toolbar, menu, statusBar, title, dialog);
        ProgramStore programs(state, shell, prompter);
        programs.LoadProgram(invoice);

        QPdfWriter writer(&pdf);
        writer.setResolution(1200);
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                         QMarginsF(0, 0, 0, 0)));
        writer.setCreator(QStringLiteral("TVX Regimenter"));
        PainterSurface surface(writer);
        state.Print.PrintJobKind = job->second;
        state.Print.PrintScale = 1.0;
        state.Print.IsPreview = false;
        DrawPrintJob(surface, state, PrintVideoOrderForm);
        surface.EndDoc();
        CloseDatabases(state);
        if (!pdf.commit())
            return Fail(QStringLiteral("cannot write %1: %2").arg(out, pdf.errorString()));
    } catch (const Fault& fault) {
        return Fail(fault.Message());
    }
    return 0;
}
