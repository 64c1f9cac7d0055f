// Options, their help text and their checks.
#include "plc/options.h"

#include "plc/faults.h"
#include "plc/literals.h"
#include "plc/motion.h"

#include <QtCore/QCommandLineParser>
#include <QtCore/QFileInfo>

#include <cstdio>

namespace plc {

namespace {

const char description[] =
    "A simulated controller: answers link requests on a pseudo-terminal or a TCP port like the\n"
    "direct serial port of an XBC-series CPU, from a memory of its own. Prints the place to open\n"
    "as \"listening on /dev/pts/3\" or \"listening on 127.0.0.1:2004\".";

const char notes[] =
    "\nUnless --still is given, these move by themselves (what a host writes there is written\n"
    "over within 20 ms):\n"
    "%1"
    "\n"
    "A request that is not well formed or reaches beyond a device's last word is not answered, "
    "but\n"
    "counted by reason.\n"
    "\n"
    "LIST names the faults that replies meet, as name=share with commas between, such as\n"
    "%2"
    "Shares are percentages of all replies, with up to four decimals, 100% together at most. What "
    "a\n"
    "request asked for is done whatever becomes of its reply. With the same seed, the n-th reply\n"
    "always meets the same fault.\n"
    "\n"
    "SIGTERM and SIGINT end the program, SIGUSR1 prints the counts so far on standard error as "
    "the\n"
    "end does, SIGUSR2 ends the faults: from then on the line is good.\n"
    "\n"
    "Exit status: 0 ended by a signal, 1 no terminal, no port, or the image could not be stored,\n"
    "2 bad input.\n";

/** An option; it takes a value when `valueName` is given. */
QCommandLineOption option(const char *name, const char *help, const char *valueName = "")
{
    return QCommandLineOption(QLatin1String(name), QLatin1String(help), QLatin1String(valueName));
}

struct Known
{
    const QCommandLineOption pty = option("pty", "Serve a pseudo-terminal (the default).");
    const QCommandLineOption link =
        option("link",
               "Make a symbolic link to the pseudo-terminal at PATH, where nothing may be yet but "
               "a link that leads nowhere; it is removed at the end.",
               "PATH");
    const QCommandLineOption tcp =
        option("tcp",
               "Serve TCP port PORT on this machine, 0 for any free one; a new connection takes "
               "the place of the one before.",
               "PORT");
    const QCommandLineOption anyAddress =
        option("any-address", "With --tcp: let other machines connect, not this one only.");
    const QCommandLineOption image =
        option("image",
               "Load the memory from FILE: lines of device,word,value, such as D,100,4660 or "
               "TX,2,0x0008.",
               "FILE");
    const QCommandLineOption save = option(
        "save", "With --image: store the memory in FILE at the end; FILE need not exist before.");
    const QCommandLineOption still = option("still", "Nothing moves by itself.");
    const QCommandLineOption baud = option(
        "baud",
        "Pace the bytes both ways like a line of N bits per second, 10 bits a byte; 0 for no "
        "pace (default: 115200).",
        "N");
    const QCommandLineOption turnaround =
        option("turnaround", "Wait MS milliseconds between request and reply.", "MS");
    const QCommandLineOption faults = option("faults", "Disturb replies, see below.", "LIST");
    const QCommandLineOption seed =
        option("seed", "Start of the dice that choose the faults; 1 when not given.", "N");
    const QCommandLineOption verbose = option(
        "verbose", "Print every request on standard error, and which fault its reply meets.");
    const QCommandLineOption help{{"h"_s, "help"_s}, "Print this text."_s};
    const QCommandLineOption version{{"v"_s, "version"_s}, "Print the version."_s};
};

/** What is wrong about the options taken together; empty when nothing is. */
QString misfit(const QCommandLineParser &parser, const Known &known)
{
    if (!parser.positionalArguments().isEmpty()) {
        return "\"%1\": expected options only"_s.arg(parser.positionalArguments().constFirst());
    }
    if (parser.isSet(known.tcp) && (parser.isSet(known.pty) || parser.isSet(known.link)))
        return "--tcp: expected neither --pty nor --link beside it"_s;
    if (parser.isSet(known.anyAddress) && !parser.isSet(known.tcp))
        return "--any-address: expected --tcp PORT beside it"_s;
    if (parser.isSet(known.save) && !parser.isSet(known.image))
        return "--save: expected --image FILE beside it"_s;
    const QFileInfo image(parser.value(known.image));
    if (parser.isSet(known.save) &&
        (image.fileName().isEmpty() || !QFileInfo(image.path()).isWritable()))
        return "--image \"%1\": expected a file in a folder that can be written to"_s.arg(
            parser.value(known.image));
    const QFileInfo link(parser.value(known.link));
    if (parser.isSet(known.link) && link.exists()) {
        return "--link \"%1\": expected a path where nothing is yet, or a link that "
               "leads nowhere%2"_s.arg(
                   link.filePath(),
                   link.isSymLink() ? "; it leads to "_s + link.symLinkTarget() : QString());
    }
    return QString();
}

/** Reads an option's whole number, if it was given; returns what is wrong with it. */
template <typename Number>
QString readNumber(const QCommandLineParser &parser, const QCommandLineOption &option, qint64 low,
                   qint64 high, Number *number)
{
    if (!parser.isSet(option))
        return QString();
    bool ok = false;
    const qint64 value = parser.value(option).toLongLong(&ok);
    if (!ok || value < low || value > high) {
        return "--%1 \"%2\": expected a whole number from %3 to %4"_s.arg(
            option.names().constFirst(), parser.value(option), QString::number(low),
            QString::number(high));
    }
    *number = Number(value);
    return QString();
}

/** Reads all options; returns what is wrong first, or an empty text. */
QString read(const QCommandLineParser &parser, const Known &known, Options *options)
{
    options->tcp = parser.isSet(known.tcp);
    options->anyAddress = parser.isSet(known.anyAddress);
    options->link = parser.value(known.link);
    options->image = parser.value(known.image);
    options->save = parser.isSet(known.save);
    options->still = parser.isSet(known.still);
    options->verbose = parser.isSet(known.verbose);

    QString wrong = misfit(parser, known);
    if (wrong.isEmpty())
        wrong = readNumber(parser, known.tcp, 0, 65535, &options->tcpPort);
    if (wrong.isEmpty())
        wrong = readNumber(parser, known.baud, 0, 4000000, &options->line.baud);
    if (wrong.isEmpty())
        wrong = readNumber(parser, known.turnaround, 0, 60000, &options->line.turnaroundMs);
    if (wrong.isEmpty())
        wrong = readNumber(parser, known.seed, 0, 0xFFFFFFFF, &options->seed);
    if (wrong.isEmpty() && parser.isSet(known.faults)) {
        wrong = FaultPlan::parse(parser.value(known.faults), &options->faults);
        if (!wrong.isEmpty())
            wrong.prepend("--faults: "_s);
    }
    return wrong;
}

}  // namespace

int complain(const QString &message)
{
    std::fprintf(stderr, "tolvane-plc: %s\n", qPrintable(message));
    return BadInput;
}

std::optional<int> readOptions(const QStringList &arguments, Options *options)
{
    const Known known;
    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(description));
    parser.addOptions({known.pty, known.link, known.tcp, known.anyAddress, known.image, known.save,
                       known.still, known.baud, known.turnaround, known.faults, known.seed,
                       known.verbose, known.help, known.version});
    if (!parser.parse(arguments))
        return complain(parser.errorText() + " See tolvane-plc --help."_s);
    if (parser.isSet(known.help)) {
        const QString text =
            parser.helpText() + QString::fromLatin1(notes).arg(motionHelp(), faultsHelp());
        std::fputs(qPrintable(text), stdout);
        return 0;
    }
    if (parser.isSet(known.version)) {
        std::printf("tolvane-plc %s\n", TOLVANE_VERSION);
        return 0;
    }
    const QString wrong = read(parser, known, options);
    if (!wrong.isEmpty())
        return complain(wrong);
    return std::nullopt;
}

}  // namespace plc
