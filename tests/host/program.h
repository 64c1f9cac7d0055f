// Runs the bench host as a process and keeps what came of it.
#ifndef TOLVANE_TESTS_PROGRAM_H
#define TOLVANE_TESTS_PROGRAM_H

#include <QtCore/QProcess>
#include <QtTest/QtTest>

struct Result
{
    int status = -1;  ///< -1: it crashed or did not end
    QString out;
    QString err;
};

inline Result runProgram(const QString &program, const QStringList &arguments)
{
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", "C.UTF-8");
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    process.closeWriteChannel();
    Result result;
    if (process.waitForFinished() && process.exitStatus() == QProcess::NormalExit)
        result.status = process.exitCode();
    result.out = QString::fromUtf8(process.readAllStandardOutput());
    result.err = QString::fromUtf8(process.readAllStandardError());
    return result;
}

inline bool hasMatch(const QString &text, const QString &pattern)
{
    return QRegularExpression(pattern).match(text).hasMatch();
}

#endif
