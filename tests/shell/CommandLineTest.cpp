#include "shell/CommandLine.h"

#include <QCommandLineParser>
#include <gtest/gtest.h>

namespace tarvex {
namespace {

const QString kHelp = QStringLiteral("Usage: tarvex [--help | --version]");

CommandLineAnswer Read(const QStringList& arguments, int positional = 0) {
    return ReadCommandLine(arguments, QStringLiteral("tarvex"), kHelp, positional);
}

TEST(CommandLine, NoArgumentsRunsTheProgram) {
    const CommandLineAnswer answer = Read({});
    EXPECT_EQ(answer.ask, CommandLineAsk::Run);
    EXPECT_TRUE(answer.text.isEmpty());
}

TEST(CommandLine, HelpInEveryFormIsTheHelpText) {
    for (const QString& form :
         {QStringLiteral("--help"), QStringLiteral("-h"), QStringLiteral("-?")}) {
        const CommandLineAnswer answer = Read({form});
        EXPECT_EQ(answer.ask, CommandLineAsk::Help) << form.toStdString();
        EXPECT_EQ(answer.text, kHelp);
        EXPECT_EQ(answer.exitCode, 0);
    }
}

TEST(CommandLine, VersionNamesTheProgramAndTheRelease) {
    const CommandLineAnswer answer = Read({QStringLiteral("--version")});
    EXPECT_EQ(answer.ask, CommandLineAsk::Version);
    EXPECT_EQ(answer.text, QStringLiteral("tarvex (TVX Regimenter) ") + ProgramVersion());
    EXPECT_EQ(answer.exitCode, 0);
    EXPECT_EQ(Read({QStringLiteral("-v")}).ask, CommandLineAsk::Version);
}

TEST(CommandLine, TheVersionIsThreeNumbers) {
    const QStringList parts = ProgramVersion().split(u'.');
    ASSERT_EQ(parts.size(), 3);
    for (const QString& part : parts) {
        bool number = false;
        part.toInt(&number);
        EXPECT_TRUE(number) << part.toStdString();
    }
    EXPECT_EQ(parts.first(), QStringLiteral("3"));
}

TEST(CommandLine, HelpWinsOverAWrongArgument) {
    EXPECT_EQ(Read({QStringLiteral("--bogus"), QStringLiteral("--help")}).ask,
              CommandLineAsk::Help);
    EXPECT_EQ(Read({QStringLiteral("--version"), QStringLiteral("--help")}).ask,
              CommandLineAsk::Help);
}

TEST(CommandLine, AnUnknownOptionIsRefusedOnStandardErrorWithStatusTwo) {
    const CommandLineAnswer answer = Read({QStringLiteral("--bogus")});
    EXPECT_EQ(answer.ask, CommandLineAsk::Wrong);
    EXPECT_EQ(answer.exitCode, 2);
    EXPECT_EQ(answer.text,
              QStringLiteral("tarvex: unknown option \"--bogus\"\nTry \"tarvex --help\"."));
}

TEST(CommandLine, AFileNameIsRefusedByAProgramThatTakesNone) {
    const CommandLineAnswer answer = Read({QStringLiteral("patients.txt")});
    EXPECT_EQ(answer.ask, CommandLineAsk::Wrong);
    EXPECT_TRUE(answer.text.contains(QStringLiteral("\"patients.txt\"")))
        << answer.text.toStdString();
}

TEST(CommandLine, AProgramThatTakesOneFileTakesOneAndNoMore) {
    EXPECT_EQ(Read({QStringLiteral("a.jpg")}, 1).ask, CommandLineAsk::Run);
    EXPECT_EQ(Read({QStringLiteral("a.jpg"), QStringLiteral("b.jpg")}, 1).ask,
              CommandLineAsk::Wrong);
    // After "--" a name that begins with a dash is a file.
    EXPECT_EQ(Read({QStringLiteral("--"), QStringLiteral("-odd.jpg")}, 1).ask, CommandLineAsk::Run);
    EXPECT_EQ(Read({QStringLiteral("-")}, 1).ask, CommandLineAsk::Run);
}

TEST(CommandLine, OnlyHelpAndVersionAreAnsweredBeforeTheWindows) {
    EXPECT_TRUE(AsksForHelpOrVersion({QStringLiteral("--help")}));
    EXPECT_TRUE(AsksForHelpOrVersion({QStringLiteral("x"), QStringLiteral("-v")}));
    EXPECT_FALSE(AsksForHelpOrVersion({}));
    EXPECT_FALSE(AsksForHelpOrVersion({QStringLiteral("-platform"), QStringLiteral("xcb")}));
    EXPECT_FALSE(AsksForHelpOrVersion({QStringLiteral("--helpful")}));
}

TEST(CommandLine, ArgumentsLeaveOutTheProgramsName) {
    char program[] = "tarvex";
    char first[] = "--help";
    char second[] = "Zo\xc3\xab.jpg";
    char* argv[] = {program, first, second, nullptr};
    EXPECT_EQ(ArgumentsOf(3, argv),
              (QStringList{QStringLiteral("--help"), QStringLiteral("Zo\u00eb.jpg")}));
}

} // namespace
} // namespace tarvex

namespace tarvex {
namespace {

struct ConsoleLine {
    QCommandLineParser parser;
    QCommandLineOption job{QStringLiteral("job"), QStringLiteral("The job."),
                           QStringLiteral("job")};
    ConsoleLine() {
        parser.addHelpOption();
        parser.addOption(job);
    }
    std::optional<int> Read(const QStringList& arguments) {
        return ReadConsoleCommandLine(parser,
                                      QStringList{QStringLiteral("tarvex-print")} + arguments,
                                      QStringLiteral("tarvex-print"));
    }
};

TEST(ConsoleCommandLine, AGoodLineGoesOn) {
    ConsoleLine line;
    EXPECT_EQ(line.Read({QStringLiteral("--job"), QStringLiteral("ex2")}), std::nullopt);
    EXPECT_EQ(line.parser.value(line.job), QStringLiteral("ex2"));
}

TEST(ConsoleCommandLine, HelpAndVersionEndWithStatusZero) {
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("--help")}), 0);
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("-h")}), 0);
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("--version")}), 0);
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("-v")}), 0);
}

TEST(ConsoleCommandLine, AWrongLineEndsWithStatusTwo) {
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("--frobnicate")}), 2);
    EXPECT_EQ(ConsoleLine().Read({QStringLiteral("--job")}), 2); // its value is missing
}

} // namespace
} // namespace tarvex
