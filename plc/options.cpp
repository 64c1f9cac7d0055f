// Options, their help text and their checks.
#include "plc/options.h"

#include <QCommandLineParser>
#include <cstdio>

#include "plc/motion.h"

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
    "loss=2%,cut=1%,flip=1%,late=1%:300ms,double=1%,noise=1%,mute=0.1%:2s\n"
    "  loss    the reply is not sent          double  the reply is sent twice\n"
    "  cut     only its first part is sent    noise   1 to 8 random bytes go before it\n"
    "  flip    one of its bits is turned      late    it is sent later by a time (ms or s)\n"
    "  mute    no reply is sent for a time, beginning with this one\n"
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

/** Reads a whole number in low..high; complains about the option otherwise. */
std::optional<qint64> readNumber(const QCommandLineParser &parser, const QCommandLineOption &option,
                                 qint64 low, qint64 high)
{
    bool ok = false;
    const qint64 number = parser.value(option).toLongLong(&ok);
    if (ok && number >= low && number <= high)
        return number;
    complain(QStringLiteral("--%1 \"%2\": expected a whole number from %3 to %4")
                 .arg(option.names().constFirst(), parser.value(option), QString::number(low),
                      QString::number(high)));
    return std::nullopt;
}

}  // namespace

int complain(const QString &message)
{
    std::fprintf(stderr, "tolvane-plc: %s\n", message.toLocal8Bit().constData());
    return BadInput;
}

std::optional<int> readOptions(const QStringList &arguments, Options *options)
{
    const QCommandLineOption pty(QStringLiteral("pty"),
                                 QStringLiteral("Serve a pseudo-terminal (the default)."));
    const QCommandLineOption link(
        QStringLiteral("link"),
        QStringLiteral("Make a symbolic link to the pseudo-terminal at PATH, where nothing may be "
                       "yet; it is removed at the end."),
        QStringLiteral("PATH"));
    const QCommandLineOption tcp(
        QStringLiteral("tcp"),
        QStringLiteral("Serve TCP port PORT on this machine, 0 for any free one; a new connection "
                       "takes the place of the one before."),
        QStringLiteral("PORT"));
    const QCommandLineOption anyAddress(
        QStringLiteral("any-address"),
        QStringLiteral("With --tcp: let other machines connect, not this one only."));
    const QCommandLineOption image(
        QStringLiteral("image"),
        QStringLiteral("Load the memory from FILE: lines of device,word,value, such as D,100,4660 "
                       "or TX,2,0x0008."),
        QStringLiteral("FILE"));
    const QCommandLineOption save(
        QStringLiteral("save"),
        QStringLiteral("With --image: store the memory in FILE at the end; FILE need not exist."));
    const QCommandLineOption still(QStringLiteral("still"),
                                   QStringLiteral("Nothing moves by itself."));
    const QCommandLineOption baud(
        QStringLiteral("baud"),
        QStringLiteral("Pace the bytes both ways as a line of N bits per second, 10 bits a byte."),
        QStringLiteral("N"));
    const QCommandLineOption turnaround(
        QStringLiteral("turnaround"),
        QStringLiteral("Wait MS milliseconds between request and reply."), QStringLiteral("MS"));
    const QCommandLineOption faults(QStringLiteral("faults"),
                                    QStringLiteral("Disturb replies, see LIST below."),
                                    QStringLiteral("LIST"));
    const QCommandLineOption seed(QStringLiteral("seed"),
                                  QStringLiteral("Start of the dice that choose the faults."),
                                  QStringLiteral("N"), QStringLiteral("1"));
    const QCommandLineOption verbose(QStringLiteral("verbose"),
                                     QStringLiteral("Print every request on standard error."));

    QCommandLineParser parser;
    parser.setApplicationDescription(QLatin1String(description));
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    parser.addOptions(
        {pty, link, tcp, anyAddress, image, save, still, baud, turnaround, faults, seed, verbose});

    if (!parser.parse(arguments))
        return complain(parser.errorText() + QStringLiteral(" See tolvane-plc --help."));
    if (parser.isSet(help)) {
        const QString text = parser.helpText() + QString::fromLatin1(notes).arg(motionHelp());
        std::fputs(text.toLocal8Bit().constData(), stdout);
        return 0;
    }
    if (parser.isSet(version)) {
        std::printf("tolvane-plc %s\n", TOLVANE_VERSION);
        return 0;
    }

    if (!parser.positionalArguments().isEmpty()) {
        return complain(QStringLiteral("\"%1\": expected options only")
                            .arg(parser.positionalArguments().constFirst()));
    }
    if (parser.isSet(tcp) && (parser.isSet(pty) || parser.isSet(link)))
        return complain(QStringLiteral("--tcp goes with neither --pty nor --link"));
    if (parser.isSet(anyAddress) && !parser.isSet(tcp))
        return complain(QStringLiteral("--any-address needs --tcp PORT"));
    if (parser.isSet(save) && !parser.isSet(image))
        return complain(QStringLiteral("--save needs --image FILE"));

    struct
    {
        const QCommandLineOption &option;
        qint64 low;
        qint64 high;
        qint64 value;
    } numbers[] = {{tcp, 0, 65535, 0},
                   {baud, 300, 4000000, 0},
                   {turnaround, 0, 60000, 0},
                   {seed, 0, 0xFFFFFFFF, 1}};
    for (auto &number : numbers) {
        if (!parser.isSet(number.option))
            continue;
        const std::optional<qint64> value =
            readNumber(parser, number.option, number.low, number.high);
        if (!value)
            return BadInput;
        number.value = *value;
    }
    if (parser.isSet(faults)) {
        const QString wrong = FaultPlan::parse(parser.value(faults), &options->faults);
        if (!wrong.isEmpty())
            return complain(QStringLiteral("--faults: ") + wrong);
    }

    if (parser.isSet(tcp))
        options->tcpPort = quint16(numbers[0].value);
    options->anyAddress = parser.isSet(anyAddress);
    options->link = parser.value(link);
    options->image = parser.value(image);
    options->save = parser.isSet(save);
    options->still = parser.isSet(still);
    options->verbose = parser.isSet(verbose);
    options->line = {int(numbers[1].value), int(numbers[2].value)};
    options->seed = quint32(numbers[3].value);
    return std::nullopt;
}

}  // namespace plc
