// tolvane-host: the driver's bench. Chooses the command and reports what ended it.
#include "host/commands/command_line.h"
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/tags/tag_text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

enum class Json { None, Object, Array, Lines };

struct Command
{
    const char *name;
    const char *summary;
    int (*run)(const QStringList &arguments);
    Json json;  ///< what --json prints
};

constexpr Command Commands[] = {
    {"demo", "a tour of the driver against a simulated controller", host::demoCommand, Json::None},
    {"info", "the driver and its register types", host::infoCommand, Json::Object},
    {"check", "addresses: valid, or why not", host::checkCommand, Json::Array},
    {"series", "the addresses that a multiple copy gets", host::seriesCommand, Json::Array},
    {"explain", "frames in plain words, and what is wrong with them", host::explainCommand,
     Json::Array},
    {"plan", "what one poll cycle will be, and what it will cost", host::planCommand, Json::Object},
    {"soak", "random traffic on a bad line, and the proof of what came of it", host::soakCommand,
     Json::Object},
    {"read", "one value of each address", host::readCommand, Json::Array},
    {"recipe", "many values at once, to a file or from it", host::recipeCommand, Json::Lines},
    {"watch", "values as they change, in a live table or as lines", host::watchCommand,
     Json::Lines},
    {"write", "values to addresses, and what came of each", host::writeCommand, Json::Array},
};

QString usage()
{
    QString text =
        "Usage: tolvane-host [options] COMMAND [options]\n"
        "Loads the driver library and talks through it, as a panel does.\n\nCommands:\n"_s;
    for (const Command &command : Commands)
        text +=
            "  %1  %2\n"_s.arg(QLatin1String(command.name), -8).arg(QLatin1String(command.summary));
    return text +
           "\ntolvane-host COMMAND --help tells about a command, -v or --version the version.\n"
           "Exit status: 0 all right, 1 something failed, 2 bad input.\n"_s;
}

const Command *commandNamed(const QString &name)
{
    const auto *command = std::find_if(
        std::begin(Commands), std::end(Commands),
        [&](const Command &candidate) { return name == QLatin1String(candidate.name); });
    return command == std::end(Commands) ? nullptr : command;
}

// A command that fails before it has printed anything still gives a program that reads along JSON.
int runCommand(const Command &command, const QStringList &arguments)
{
    try {
        return command.run(arguments);
    } catch (const host::Failure &failure) {
        const QJsonObject object{{"quality"_s, "bad"_s},
                                 {"reason"_s, QString::fromUtf8(failure.what())}};
        if (command.json == Json::None || !arguments.contains("--json"_s))
            throw;
        if (command.json == Json::Lines)
            QTextStream(stdout) << host::jsonLine(object);
        else if (command.json == Json::Array)
            host::printJson(QJsonDocument(QJsonArray{object}));
        else
            host::printJson(QJsonDocument(object));
        throw;
    }
}

// Options may stand before the command. Which of them take a value only the command knows: so the
// first word that names a command is it, and goes to the front.
int run(QStringList arguments)
{
    const QString first = arguments.value(1);
    if (first == "--help"_s || first == "-h"_s) {
        QTextStream(stdout) << usage();
        return host::AllRight;
    }
    if (first == "--version"_s || first == "-v"_s) {
        QTextStream(stdout) << "tolvane-host " << QCoreApplication::applicationVersion() << '\n';
        return host::AllRight;
    }
    const bool optionsFirst = first.startsWith(QLatin1Char('-'));
    for (int i = 1; i < int(arguments.size()); ++i) {
        const Command *command = commandNamed(arguments[i]);
        if (command) {
            arguments.move(i, 1);
            return runCommand(*command, arguments);
        }
        if (!optionsFirst)
            break;
    }
    throw host::Failure((first.isEmpty() ? "no command given"_s
                         : optionsFirst  ? "no command given behind \"%1\""_s.arg(first)
                                         : "there is no command \"%1\""_s.arg(first)) +
                            "; tolvane-host --help lists them"_s,
                        host::BadInput);
}

// What a full disk did not take makes a failure of the best result.
int closeOutput(int status)
{
    if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0)
        return status;
    std::fputc('\n', stdout);  // only another try tells why
    const QString reason =
        std::fflush(stdout) == 0 ? "not all of it was taken"_s : qt_error_string(errno);
    QTextStream(stderr) << "tolvane-host: cannot write to standard output: " << reason << '\n';
    return host::SomethingFailed;
}

}  // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName("tolvane-host"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral(TOLVANE_VERSION));
    try {
        return closeOutput(run(QCoreApplication::arguments()));
    } catch (const host::Failure &failure) {
        QTextStream(stderr) << "tolvane-host: " << QString::fromUtf8(failure.what()) << '\n';
        return failure.status();
    }
}
