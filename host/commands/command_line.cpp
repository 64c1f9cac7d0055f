// Options that the commands have in common, and how a wrong command line is refused.
#include "host/commands/command_line.h"

#include "host/failure.h"
#include "host/neighbours.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTextStream>

namespace host {

CommandLine::CommandLine(const QString &name, const QString &summary)
    : m_name(name),
      m_driver(QStringLiteral("driver"),
               QStringLiteral("The driver library to load (default: the one beside this program)."),
               QStringLiteral("path")),
      m_help({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help."))
{
    setApplicationDescription(summary);
    addPositionalArgument(name, QStringLiteral("This command."), name);
    addOptions({m_driver, m_help});
}

void CommandLine::read(const QStringList &arguments, int positionalArgumentCount)
{
    const QString advice = QStringLiteral("; see tolvane-host %1 --help").arg(m_name);
    if (!parse(arguments))
        throw Failure(errorText().remove(QRegularExpression(QStringLiteral("\\.$"))) + advice,
                      BadInput);
    for (const QString &option : optionNames())
        if (values(option).contains(QString()))
            throw Failure(QStringLiteral("--%1 is empty; expected a value").arg(option) + advice,
                          BadInput);
    if (isSet(m_help))
        showHelp();
    const QStringList given = positionalArguments().mid(1);
    if (given.size() > positionalArgumentCount)
        throw Failure(
            QStringLiteral("unexpected argument \"%1\"").arg(given[positionalArgumentCount]) +
                advice,
            BadInput);
}

void CommandLine::addTagFileOption()
{
    addOption(QCommandLineOption(
        QStringLiteral("tags"),
        QStringLiteral("A tag file with the addresses; its tags are read in as few requests as "
                       "the driver plans."),
        QStringLiteral("file")));
}

QStringList CommandLine::tagFiles() const
{
    return values(QStringLiteral("tags"));
}

void CommandLine::addJsonOption(const char *help)
{
    addOption(QCommandLineOption(QStringLiteral("json"), QLatin1String(help)));
}

bool CommandLine::asJson() const
{
    return isSet(QStringLiteral("json"));
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
