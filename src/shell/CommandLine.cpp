#include "shell/CommandLine.h"

#include "shell/Version.h"

#include <QCommandLineParser>
#include <cstdio>

namespace tarvex {

namespace {

bool IsHelp(const QString& argument) {
    return argument == QLatin1String("--help") || argument == QLatin1String("-h") ||
           argument == QLatin1String("-?");
}

bool IsVersion(const QString& argument) {
    return argument == QLatin1String("--version") || argument == QLatin1String("-v");
}

CommandLineAnswer Wrong(const QString& program, const QString& what) {
    return {CommandLineAsk::Wrong, QStringLiteral("%1: %2\nTry \"%1 --help\".").arg(program, what),
            2};
}

} // namespace

QString ProgramVersion() {
    return QStringLiteral("%1.%2.%3").arg(kVersionMajor).arg(kVersionMinor).arg(kVersionRevision);
}

QString VersionLine(const QString& program) {
    return QStringLiteral("%1 (TVX Regimenter) %2").arg(program, ProgramVersion());
}

CommandLineAnswer ReadCommandLine(const QStringList& arguments, const QString& program,
                                  const QString& help, int positional) {
    // Help and the version win over anything else on the line, as with most programs.
    for (const QString& argument : arguments) {
        if (IsHelp(argument))
            return {CommandLineAsk::Help, help, 0};
    }
    for (const QString& argument : arguments) {
        if (IsVersion(argument))
            return {CommandLineAsk::Version, VersionLine(program), 0};
    }
    int plain = 0;
    bool optionsEnded = false;
    for (const QString& argument : arguments) {
        if (!optionsEnded && argument == QLatin1String("--")) {
            optionsEnded = true;
            continue;
        }
        if (!optionsEnded && argument.startsWith(u'-') && argument.size() > 1)
            return Wrong(program, QStringLiteral("unknown option \"%1\"").arg(argument));
        if (++plain > positional)
            return Wrong(
                program,
                positional == 0
                    ? QStringLiteral("takes no arguments, but was given \"%1\"").arg(argument)
                    : QStringLiteral("one more argument than it takes: \"%1\"").arg(argument));
    }
    return {};
}

bool AsksForHelpOrVersion(const QStringList& arguments) {
    for (const QString& argument : arguments) {
        if (IsHelp(argument) || IsVersion(argument))
            return true;
    }
    return false;
}

int PrintCommandLineAnswer(const CommandLineAnswer& answer) {
    std::FILE* stream = answer.ask == CommandLineAsk::Wrong ? stderr : stdout;
    std::fprintf(stream, "%s\n", answer.text.toLocal8Bit().constData());
    std::fflush(stream);
    return answer.exitCode;
}

std::optional<int> ReadConsoleCommandLine(QCommandLineParser& parser, const QStringList& arguments,
                                          const QString& program) {
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Displays version information."));
    parser.addOption(version);
    if (!parser.parse(arguments))
        return PrintCommandLineAnswer(
            Wrong(program, parser.errorText().replace(u'\'', u'"').toLower()));
    if (parser.isSet(QStringLiteral("help")))
        return PrintCommandLineAnswer({CommandLineAsk::Help, parser.helpText().trimmed(), 0});
    if (parser.isSet(version))
        return PrintCommandLineAnswer({CommandLineAsk::Version, VersionLine(program), 0});
    return std::nullopt;
}

QStringList ArgumentsOf(int argc, char** argv) {
    QStringList arguments;
    for (int i = 1; i < argc; ++i)
        arguments << QString::fromLocal8Bit(argv[i]);
    return arguments;
}

} // namespace tarvex
