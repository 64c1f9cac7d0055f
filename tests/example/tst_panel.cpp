// The example's panel, clicked on without a screen, against the simulated controller as a process.
#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QtTest/QtTest>

#include <thread>

#include "examples/panel/window.h"

class TestPanel : public QObject
{
    Q_OBJECT

    const Driver m_driver{DRIVER_LIBRARY};
    QTemporaryDir m_folder;
    const QString m_line = m_folder.filePath("line");
    const QString m_image = m_folder.filePath("image.csv");
    QProcess m_plc;

    void startController()
    {
        m_plc.start(PLC_PROGRAM, {"--still", "--link", m_line, "--image", m_image, "--save"});
        QVERIFY(m_plc.waitForReadyRead());
    }

    void stopController()
    {
        m_plc.terminate();
        m_plc.waitForFinished();
    }

    static void click(const Window &window, const QString &text)
    {
        for (auto *button : window.findChildren<QPushButton *>())
            if (button->text() == text)
                button->click();
        QCoreApplication::processEvents();
    }

    /** The last word of banner, alarm, values and message; of what is grey in brackets. */
    static QString shown(const Window &window)
    {
        QStringList words;
        for (const auto *label : window.findChildren<QLabel *>()) {
            const QString word = label->text().section(' ', -1);
            if (label->isVisibleTo(&window) && !label->buddy())
                words += label->isEnabled() ? word : "(" + word + ")";
        }
        return words.join(' ');
    }

    void day(bool silent)
    {
        QFile image(m_image);
        QVERIFY(image.open(QIODevice::WriteOnly));
        image.write("M,0,1\nD,101,65286\nD,200,5\nD,501,8\nTX,0,1\n");
        image.close();
        startController();
        {
            Communication communication(m_driver, m_line);
            Window window(communication);
            QCOMPARE(shown(window), QString("kept. (unknown) (---) (---) (---) (---) (---) "));
            communication.start();
            for (int i = 0; i < 100; ++i)
                window.findChild<QTabWidget *>()->setCurrentIndex(1 - i % 2);
            QTRY_COMPARE(shown(window), QString("open 0 5 -250 0 1 "));
            click(window, "Start pump");
            click(window, silent ? "Recipe up" : "");
            QTRY_VERIFY(!silent || shown(window) == "open 1 5 -250 0 1 complete");
            click(window, "Recipe down");
            QTRY_COMPARE(shown(window), QString("open 1 5 -250 0 1 complete"));

            if (silent)
                kill(pid_t(m_plc.processId()), SIGSTOP);
            else
                stopController();
            const QString lost("kept. (unknown) (1) (5) (-250) (0) (1) %1");
            QTRY_COMPARE_WITH_TIMEOUT(shown(window), lost.arg("complete"), 30000);
            click(window, "Stop pump");
            QTRY_COMPARE_WITH_TIMEOUT(shown(window), lost.arg("0#M_bit20.3(1)(0)"), 30000);
            click(window, "Recipe down");
            QTRY_COMPARE_WITH_TIMEOUT(shown(window), lost.arg("way"), 30000);

            if (silent)
                kill(pid_t(m_plc.processId()), SIGCONT);
            else
                startController();
            QTRY_COMPARE_WITH_TIMEOUT(shown(window), QString("open 1 5 -250 0 1 way"), 30000);
            window.findChild<QSpinBox *>()->setValue(-2);
            click(window, "Set");
        }
        stopController();
        QVERIFY(image.open(QIODevice::ReadOnly));
        const QByteArray recipe(silent ? "D,501,8\n" : "D,500,1200\nD,501,250\n");
        const QByteArray before("device,word,value\nM,0,1\nM,20,8\nD,101,65286\nD,200,65534\n");
        QCOMPARE(image.readAll(), before + recipe + "TX,0,1\n");
    }

private slots:
    void cleanup() { stopController(); }

    void replies_data()
    {
        QTest::addColumn<QByteArray>("arrives");
        QTest::addColumn<bool>("good");
        const QByteArray answer("\x06r34123C\x04");
        QTest::newRow("a shorter one first") << "\x06o6F\x04" + answer << true;
        QTest::newRow("a longer one first") << "\x06r3412341206\x04" + answer << true;
        QTest::newRow("a wrong checksum") << QByteArray("\x06r34123D\x04") << false;
        QTest::newRow("noise before it") << "\x15" + answer << false;
    }

    void replies()
    {
        QFETCH(QByteArray, arrives);
        const int master = posix_openpt(O_RDWR | O_NOCTTY);
        QVERIFY(grantpt(master) == 0 && unlockpt(master) == 0);
        Line line;
        QVERIFY(line.open(ptsname(master)));
        std::thread controller([=] {
            usleep(20000);  // more than both frames travel
            QVERIFY(write(master, arrives.constData(), size_t(arrives.size())) > 0);
        });
        FRAME_PRO frame;
        frame.replyLen = 9;
        const QByteArray reply = line.ask(frame, false);
        controller.join();
        QTEST(!reply.isEmpty(), "good");
    }

    void deviceGoesAndComesBack() { day(false); }
    void controllerFallsSilent() { day(true); }

    void programTakesItsPicture()
    {
        startController();
        QCOMPARE(QProcess::execute(PANEL_PROGRAM, {m_line, DRIVER_LIBRARY, m_line + ".png"}), 0);
    }
};

QTEST_MAIN(TestPanel)
#include "tst_panel.moc"
