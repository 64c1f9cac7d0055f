// Reads a command line by its command's row.
#include "host/commands/command_line.h"

#include "host/driver/neighbours.h"
#include "host/exchange/connection_options.h"
#include "host/output/failure.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QTextStream>

namespace host {

CommandLine::CommandLine(const Command &command, const QStringList &arguments)
{
    const QString name = QLatin1String(command.name);
    setApplicationDescription(QLatin1String(command.help));
    addPositionalArgument(name, "This command."_s, name);
    int most = 0;
    for (const Argument &argument : command.arguments) {
        const QString syntax = QLatin1String(argument.syntax);
        addPositionalArgument(syntax, QLatin1String(argument.help), syntax);
        most = syntax.contains("..."_s) ? int(arguments.size()) : most + 1;
    }
    addOption({"driver"_s, "The driver library to load (default: the one beside this program)."_s,
               "path"_s});
    addOption({{"h"_s, "help"_s}, "Shows this help."_s});
    if (command.lineOptions)
        addConnectionOptions(*this, QString(QLatin1String(command.lineOptions))
                                        .split(QLatin1Char(' '), Qt::SkipEmptyParts));
    for (const Option &option : command.options) {
        const QString preset = QLatin1String(option.preset);
        const QString help = QLatin1String(option.help) +
                             (preset.isEmpty() ? "."_s : " (default: %1)."_s.arg(preset));
        addOption({QString(QLatin1String(option.name)).split(QLatin1Char(',')), help,
                   QLatin1String(option.value), preset});
    }
    if (command.json != Json::None)
        addOption({"json"_s, "Print %1."_s.arg(command.json == Json::Object  ? "a JSON object"_s
                                               : command.json == Json::Array ? "a JSON array"_s
                                                                             : "lines of JSON"_s)});

    const QString advice = "; see tolvane-host %1 --help"_s.arg(name);
    if (!parse(arguments))
        throw Failure(errorText().remove(QRegularExpression("\\.$"_s)) + advice, BadInput);
    for (const QString &option : optionNames())
        if (values(option).contains(QString()))
            throw Failure("--%1 is empty; expected a value"_s.arg(option) + advice, BadInput);
    if (isSet("help"_s))
        showHelp();
    if (given().size() > most)
        throw Failure("unexpected argument %1"_s.arg(quoted(given()[most])) + advice, BadInput);
    if (command.missing && given().isEmpty() && tagFiles().isEmpty())
        throw Failure(QLatin1String(command.missing), BadInput);
}

QStringList CommandLine::tagFiles() const
{
    return optionNames().contains("tags"_s) ? values("tags"_s) : QStringList();
}

bool CommandLine::asJson() const
{
    return isSet("json"_s);
}

QString CommandLine::driverPath() const
{
    return isSet("driver"_s) ? value("driver"_s) : findDriver();
}

void printJson(const QJsonDocument &document)
{
    QTextStream(stdout) << document.toJson();
}

}  // namespace host
