// The simulated controller as a program: real pseudo-terminals, TCP, signals, command line.
#include <signal.h>

#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QSerialPort>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>
#include <memory>

#include "frames.h"

namespace {

/** The program while it runs. */
class Plc
{
public:
    explicit Plc(const QString &arguments)
    {
        process_.start(QStringLiteral(TOLVANE_PLC), arguments.split(QLatin1Char(' ')));
        const QByteArray announced("listening on ");
        while (!process_.canReadLine() && process_.waitForReadyRead(5000))
            continue;
        const QByteArray line = process_.readLine().trimmed();
        if (line.startsWith(announced))
            place_ = QString::fromLatin1(line.mid(announced.size()));
    }
    ~Plc() { end(); }

    /** Where it listens; empty when it does not. */
    QString place() const { return place_; }
    void raise(int number) { kill(pid_t(process_.processId()), number); }
    /** Waits for text on standard error; returns all of it so far. */
    QByteArray errors(const QByteArray &awaited)
    {
        process_.setReadChannel(QProcess::StandardError);
        do
            errors_ += process_.readAllStandardError();
        while (!errors_.contains(awaited) && process_.waitForReadyRead(5000));
        return errors_;
    }
    /** Ends it as a user would; returns its exit status, or -1. */
    int end(int number = SIGTERM)
    {
        if (process_.state() == QProcess::NotRunning)
            return -1;
        raise(number);
        const bool ended = process_.waitForFinished(5000);
        errors_ += process_.readAllStandardError();
        return ended && process_.exitStatus() == QProcess::NormalExit ? process_.exitCode() : -1;
    }
    QByteArray errorsAtEnd() const { return errors_; }

private:
    QProcess process_;
    QString place_;
    QByteArray errors_;
};

/** Opens the place where a controller listens: a terminal, or address and port. */
std::unique_ptr<QIODevice> connectTo(const QString &place)
{
    const QStringList parts = place.split(QLatin1Char(':'));
    if (parts.size() == 1) {
        auto port = std::make_unique<QSerialPort>(place);
        port->setBaudRate(115200);
        return port->open(QIODevice::ReadWrite) ? std::move(port) : nullptr;
    }
    auto socket = std::make_unique<QTcpSocket>();
    socket->connectToHost(parts[0], parts[1].toUShort());
    return socket->waitForConnected(5000) ? std::move(socket) : nullptr;
}

/** What comes back for a request within the time, as soon as it has the length. */
QByteArray exchange(QIODevice *line, const QByteArray &request, int length, int waitMs = 5000)
{
    line->write(request);
    QElapsedTimer clock;
    clock.start();
    QByteArray reply;
    while (reply.size() < length && clock.elapsed() < waitMs) {
        line->waitForReadyRead(50);
        reply += line->readAll();
    }
    return reply;
}

}  // namespace

class TestPlcProgram : public QObject
{
    Q_OBJECT

private slots:
    void serves()
    {
        for (const char *arguments : {"--still", "--still --tcp 0"}) {
            Plc plc(arguments);
            for (int host = 0; host < 3; ++host) {
                const auto line = connectTo(plc.place());
                QVERIFY2(line, arguments);
                QCOMPARE(exchange(line.get(), readD0, 9), zeroReply);
                line->write(
                    readD0.left(5));  // the next host is not to suffer from what this one left
                line->waitForBytesWritten(1000);
            }
            plc.raise(SIGUSR1);
            QVERIFY(plc.errors("stray bytes").startsWith("served: total=3 read=3 "));
            QCOMPARE(plc.end(SIGINT), 0);
            QVERIFY(plc.errorsAtEnd().count("served: total=3 ") == 2);
        }
    }

    void linksAndCleansUp()
    {
        QTemporaryDir folder;
        const QString link = folder.filePath(QStringLiteral("plc"));
        for (const bool replaced : {false, true}) {
            Plc plc(QStringLiteral("--link ") + link);
            const auto line = connectTo(link);
            QVERIFY(line);
            QCOMPARE(exchange(line.get(), readD0, 9), zeroReply);
            if (replaced)
                QVERIFY(QFile::remove(link) && QFile::link(folder.path(), link));
            QCOMPARE(plc.end(), 0);
            QCOMPARE(QFileInfo(link).isSymLink(), replaced);
            QFile::remove(link);
            QVERIFY(QFile::link(folder.filePath("gone"), link));  // as a killed one leaves it
        }
    }
};

QTEST_GUILESS_MAIN(TestPlcProgram)
#include "tst_plc_program.moc"
