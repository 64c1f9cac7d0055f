// The command line as every command reads it: its own name, --help, and one way to refuse.
#pragma once

#include <QtCore/QCommandLineParser>
#include <QtCore/QJsonDocument>

namespace host {

class CommandLine : public QCommandLineParser
{
public:
    /** name: as typed; summary: what the command does, for --help. */
    CommandLine(const QString &name, const QString &summary);

    /**
     * Reads the arguments; --help prints the help and ends the program. Throws Failure (bad input)
     * for unknown options, missing values and more positional arguments than were declared.
     */
    void read(const QStringList &arguments, int positionalArguments = 0);

    /** Declares --tags, which may be given several times; of a tag file by any name. */
    void addTagFileOption();
    QStringList tagFiles() const;

    /** Declares --json; the help says what it prints. */
    void addJsonOption(const char *help);
    bool asJson() const;

    /** The driver library to load: --driver, or the one beside the program. */
    QString driverPath() const;

private:
    QString m_name;
    QCommandLineOption m_driver;
    QCommandLineOption m_help;
};

/** Prints it on standard output, over several lines. */
void printJson(const QJsonDocument &document);

}  // namespace host
