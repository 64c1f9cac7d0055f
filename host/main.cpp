// tolvane-host: the driver's bench. Chooses the command and reports what ended it.
#include "host/commands/commands.h"
#include "host/output/failure.h"
#include "host/tags/tag_text.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonArray>
#include <QtCore/QTextStream>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <new>

namespace {

using host::Json;

constexpr char SoakFaults[] =
    "loss=2%,cut=1%,flip=2%,late=1%:510ms..1500ms,double=2%,noise=1.8%,mute=0.2%:3s";
constexpr char TagAddresses[] =
    "Such as D_W:100x10, level=D_W:100:float, M_bit:20.5, or a tag file.";

const host::Command Commands[] = {
    {"demo", "a tour of the driver against a simulated controller",
     "A tour of the driver against a simulated controller, every step checked.\n"
     "Exit status 0 only if every result was right.",
     host::demoCommand},
    {"info", "the driver and its register types",
     "The driver's name and version, its default line, and its register types.\n"
     "A pattern has a letter for each digit: D is a decimal one.",
     host::infoCommand, Json::Object},
    {"check",
     "addresses: valid, or why not",
     "Asks the driver about each address: valid, or why not.\n"
     "Exit status 1 when one of them is not valid.",
     host::checkCommand,
     Json::Array,
     {{"ADDRESS...", TagAddresses}},
     "nothing to check; expected ADDRESS..."},
    {"explain",
     "frames in plain words, and what is wrong with them",
     "Frames in plain words, their checksums judged; ^^ points at what is wrong.\n"
     "-> is a request, <- a reply; a reply is judged by the request before it.\n"
     "Exit status 1 when a frame is wrong or a reply is missing.",
     host::explainCommand,
     Json::Array,
     {{"HEX...|FILE|-",
       "Bytes as hex pairs, with blanks or without, or a file that --trace or \"socat -x\" wrote; "
       "- "
       "for standard input."}},
     nullptr,
     nullptr,
     {{"wrong", "Print only frames that are wrong, and the requests of wrong or missing replies"}}},
    {"plan",
     "what one poll cycle will be, and what it will cost",
     "What one poll cycle of these tags will be: the driver's requests, what they cost on the\n"
     "line, and what is saved by reading tags together. No line is opened.",
     host::planCommand,
     Json::Object,
     {{"TAGS...", "A tag file (CSV: name,address,format), or addresses such as D_W:100x10."}},
     "nothing to plan; expected a tag file or addresses",
     "serial station block-limit",
     {{"turnaround", "What the controller takes from a request to its reply", "ms", "0"},
      {"suggest", "Also find the block limit with the shortest cycle"},
      {"svg", "Draw the cycle into this file; - draws it to standard output, instead of the text",
       "file"}}},
    {"soak",
     "random traffic on a bad line, and the proof of what came of it",
     "Monitors, writes and reads at random through the driver, on a line whose replies get lost,\n"
     "late or damaged; then lets the line heal and proves the end state. In simulated time, so it\n"
     "takes as long as its computing and comes out the same for the same seed.\n"
     "Exit status 0 only if the controller's memory and all that was read are right.",
     host::soakCommand,
     Json::Object,
     {},
     nullptr,
     "serial pace timeout grace listen",
     {{"exchanges", "Requests to send while the line is bad", "n", "100000"},
      {"faults",
       "Faults of replies and their shares, as tolvane-plc takes them; one of 100 requests gets "
       "lost besides",
       "list", SoakFaults},
      {"seed", "Start of all dice", "n", "1"}}},
    {"read",
     "one value of each address",
     "Reads each address once. Exit status 1 when one has no good value.",
     host::readCommand,
     Json::Array,
     {{"ADDRESS...", TagAddresses}},
     "nothing to read; expected ADDRESS... or --tags FILE",
     "",
     {host::TagsOption}},
    {"recipe",
     "many values at once, to a file or from it",
     "pull: reads the file's addresses, or those given, and puts their values into the file.\n"
     "push: writes the file's values, reads them back and compares.\n"
     "The file is CSV: address,value,value,...",
     host::recipeCommand,
     Json::Lines,
     {{"pull|push", "pull or push."},
      {"FILE", "The recipe; - for pull to standard output."},
      {"[ADDRESS...]",
       "For pull, beside what the file holds or in its place: such as D_W:100x10:float or "
       "M_bit:20.5x8."}},
     nullptr,
     "",
     {host::TagsOption}},
    {"watch",
     "values as they change, in a live table or as lines",
     "Polls addresses: a live table on a terminal (changed, read: time since the value\n"
     "changed and since its last good read), elsewhere a line per change of value or\n"
     "quality. Ctrl-C ends it with the counts. Exit status 1 when a tag had no good value\n"
     "at the end.",
     host::watchCommand,
     Json::Lines,
     {{"ADDRESS...", TagAddresses}},
     "nothing to watch; expected ADDRESS... or --tags FILE",
     "",
     {host::TagsOption,
      {"csv",
       "Write time,name,address,value,quality,reason of each change to a file, behind what is "
       "there; - for stdout",
       "file"},
      {"every",
       "Write all values so often, changed or not; in CSV a column for each value and one for "
       "its quality",
       "ms"},
      {"poll", "Begin a poll cycle no sooner than so long after the one before", "ms"},
      {"for", "End after so many seconds", "seconds"},
      {"stats", "Print what became of the exchanges, block by block, at the end"},
      {"never-set-aside,no-demotion",
       "Poll blocks that are given up three times in a row as often as others"}}},
    {"write",
     "values to addresses, and what came of each",
     "Writes values and waits until the controller has acknowledged each.\n"
     "Exit status 1 when the driver gave one up, or one is read back otherwise.",
     host::writeCommand,
     Json::Array,
     {{"ADDRESS=VALUE...",
       "Such as D_W:100=5, M_bit:20.5=1, D_W:100x3=1,2,3 or D_W:200:float=1.5."}},
     "nothing to write; expected ADDRESS=VALUE...",
     "",
     {{"verify", "Read every value back, and compare"}}},
};

QString usage()
{
    QString text =
        "Usage: tolvane-host [options] COMMAND [options]\n"
        "Loads the driver library and talks through it, as a panel does.\n\nCommands:\n"_s;
    for (const host::Command &command : Commands)
        text +=
            "  %1  %2\n"_s.arg(QLatin1String(command.name), -8).arg(QLatin1String(command.summary));
    return text +
           "\ntolvane-host COMMAND --help tells about a command, -v or --version the version.\n"
           "Exit status: 0 all right, 1 something failed, 2 bad input.\n"_s;
}

const host::Command *commandNamed(const QString &name)
{
    const auto *command = std::find_if(
        std::begin(Commands), std::end(Commands),
        [&](const host::Command &candidate) { return name == QLatin1String(candidate.name); });
    return command == std::end(Commands) ? nullptr : command;
}

// A command that fails before it has printed anything still gives a program that reads along JSON.
int runCommand(const host::Command &command, const QStringList &arguments)
{
    try {
        return command.run(host::CommandLine(command, arguments));
    } catch (const host::Failure &failure) {
        const QJsonObject object{{"quality"_s, "bad"_s}, {"reason"_s, failure.text()}};
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
        const host::Command *command = commandNamed(arguments[i]);
        if (command) {
            arguments.move(i, 1);
            return runCommand(*command, arguments);
        }
        if (!optionsFirst)
            break;
    }
    throw host::Failure((first.isEmpty() ? "no command given"_s
                         : optionsFirst  ? "no command given behind %1"_s.arg(host::quoted(first))
                                         : "there is no command %1"_s.arg(host::quoted(first))) +
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
    host::tell("cannot write to standard output: %1"_s.arg(reason));
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
        host::tell(failure.text());
        return failure.status();
    } catch (const std::bad_alloc &) {
        std::fputs("tolvane-host: there is not enough memory for that\n", stderr);
        return host::SomethingFailed;
    }
}
