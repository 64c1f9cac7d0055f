// A command as a row of the program's table, and the command line as it reads it.
#pragma once

#include <QtCore/QCommandLineParser>
#include <QtCore/QJsonDocument>
#include <QtCore/QVector>

namespace host {

class CommandLine;

enum class Json { None, Object, Array, Lines };

struct Option
{
    const char *name;              ///< or several, with commas between
    const char *help;              ///< a full stop, and the default, are put behind it
    const char *value = nullptr;   ///< what it is called in the help; null: it takes none
    const char *preset = nullptr;  ///< its default
};

struct Argument
{
    const char *syntax;  ///< such as "FILE"; "..." in it: any number of them
    const char *help;
};

struct Command
{
    const char *name;
    const char *summary;  ///< for the list of commands
    const char *help;
    int (*run)(const CommandLine &);
    Json json = Json::None;  ///< what --json prints
    QVector<Argument> arguments = {};
    const char *missing = nullptr;  ///< what is said without any argument; null: there may be none
    /** Of the options that reach a controller their names; empty: all; null: none. */
    const char *lineOptions = nullptr;
    QVector<Option> options = {};
};

/** The option --tags, for a command whose addresses may stand in files by any name. */
constexpr Option TagsOption{
    "tags",
    "A tag file with the addresses; its tags are read in as few requests as the driver plans",
    "file"};

class CommandLine : public QCommandLineParser
{
public:
    /**
     * Reads the arguments, the command's name behind the program's; --help prints the help and ends
     * the program. Throws Failure (bad input) for unknown options, missing values, and more
     * arguments than the command takes or none where it needs some.
     */
    CommandLine(const Command &command, const QStringList &arguments);

    /** The arguments behind the command. */
    QStringList given() const { return positionalArguments().mid(1); }

    /** Of --tags, which may be given several times. */
    QStringList tagFiles() const;

    bool asJson() const;

    /** The driver library to load: --driver, or the one beside the program. */
    QString driverPath() const;
};

/** Prints it on standard output, over several lines. */
void printJson(const QJsonDocument &document);

}  // namespace host
