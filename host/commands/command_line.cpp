// Options that the commands have in common, and how a wrong command line is refused.
#include "host/commands/command_line.h"

#include "host/driver/neighbours.h"
#include "host/output/failure.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTextStream>

namespace host {

CommandLine::CommandLine(const QString &name, const QString &summary)
    : m_name(name),
      m_driver("driver"_s, "The driver library to load (default: the one beside this program)."_s,
               "path"_s),
      m_help({"h"_s, "help"_s}, "Shows this help."_s)
{
    setApplicationDescription(summary);
    addPositionalArgument(name, "This command."_s, name);
    addOptions({m_driver, m_help});
}

void CommandLine::read(const QStringList &arguments, int positionalArgumentCount)
{
    const QString advice = "; see tolvane-host %1 --help"_s.arg(m_name);
    if (!parse(arguments))
        throw Failure(errorText().remove(QRegularExpression("\\.$"_s)) + advice, BadInput);
    for (const QString &option : optionNames())
        if (values(option).contains(QString()))
            throw Failure("--%1 is empty; expected a value"_s.arg(option) + advice, BadInput);
    if (isSet(m_help))
        showHelp();
    const QStringList given = positionalArguments().mid(1);
    if (given.size() > positionalArgumentCount)
        throw Failure("unexpected argument \"%1\""_s.arg(given[positionalArgumentCount]) + advice,
                      BadInput);
}

void CommandLine::addTagFileOption()
{
    addOption(
        QCommandLineOption("tags"_s,
                           "A tag file with the addresses; its tags are read in as few requests as "
                           "the driver plans."_s,
                           "file"_s));
}

QStringList CommandLine::tagFiles() const
{
    return values("tags"_s);
}

void CommandLine::addJsonOption(const char *help)
{
    addOption(QCommandLineOption("json"_s, QLatin1String(help)));
}

bool CommandLine::asJson() const
{
    return isSet("json"_s);
}

QString CommandLine::driverPath() const
{
    return isSet(m_driver) ? value(m_driver) : findDriver();
}

void printJson(const QJsonDocument &document)
{
    QTextStream(stdout) << document.toJson();
}

}  // namespace host
