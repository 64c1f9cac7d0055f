// Runs the sessions (*.t) beside this file: what a user types, and what must be printed.
#include <QtCore/QDir>
#include <QtCore/QProcess>
#include <QtTest/QtTest>

class TestSessions : public QObject
{
    Q_OBJECT

private slots:
    void session_data()
    {
        QTest::addColumn<QString>("file");
        for (const QString &file : QDir(SESSIONS).entryList({"*.t"}))
            QTest::newRow(qPrintable(file)) << QDir(SESSIONS).filePath(file);
    }
    void session()
    {
        QFETCH(QString, file);
        qputenv("PATH", PROGRAMS ":" + qgetenv("PATH"));
        QProcess cram;
        cram.setProcessChannelMode(QProcess::MergedChannels);
        // Ends all that the session has started, should it not end.
        cram.start("timeout", {"--signal=KILL", "40", CRAM_PROGRAM, "--shell=/bin/sh", file});
        QVERIFY(cram.waitForFinished(50000));
        QVERIFY2(cram.exitCode() == 0, cram.readAll().constData());
    }
};

QTEST_GUILESS_MAIN(TestSessions)
#include "tst_sessions.moc"
