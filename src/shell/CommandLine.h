#pragma once

#include <QString>
#include <QStringList>
#include <optional>

class QCommandLineParser;

namespace tarvex {

// The name of the desktop entry, the AppStream id and the icon.
inline constexpr const char* kDesktopId = "com.tarvex.Regimenter";

// The program's version, "3.6.0", and the line that --version prints for one of its
// programs: "tarvex-print (TVX Regimenter) 3.6.0".
QString ProgramVersion();
QString VersionLine(const QString& program);

// What a program with windows does with its command line. It takes --help and --version,
// and Qt's own options, which QApplication takes away before the rest is read.
enum class CommandLineAsk { Run, Help, Version, Wrong };

struct CommandLineAnswer {
    CommandLineAsk ask = CommandLineAsk::Run;
    QString text;     // printed on standard output (help, version) or standard error
    int exitCode = 0; // for every ask but Run
};

// Reads the arguments after the program's name. `help` is the whole text of --help;
// `positional` is how many plain arguments (file names) the program takes.
CommandLineAnswer ReadCommandLine(const QStringList& arguments, const QString& program,
                                  const QString& help, int positional = 0);

// Whether the arguments ask for help or the version, which are answered before any window
// or display is opened, so that they work on a terminal without one.
bool AsksForHelpOrVersion(const QStringList& arguments);

// Prints the answer where it belongs and gives its exit status.
int PrintCommandLineAnswer(const CommandLineAnswer& answer);

// Reads the command line of a console program with its parser, which must have been
// given its help option: the help or the version on standard output, a wrong line on
// standard error. Gives the exit status (0, or 2 for a wrong line) when the program is to
// end there.
std::optional<int> ReadConsoleCommandLine(QCommandLineParser& parser, const QStringList& arguments,
                                          const QString& program);

// The arguments of a program as text, without the program's name.
QStringList ArgumentsOf(int argc, char** argv);

} // namespace tarvex
