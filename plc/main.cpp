// tolvane-plc: the simulated controller on a line.
#include "plc/image.h"
#include "plc/literals.h"
#include "plc/motion.h"
#include "plc/options.h"
#include "plc/paced_door.h"
#include "plc/pseudo_terminal.h"
#include "plc/report.h"
#include "plc/signals.h"
#include "plc/tcp_door.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QSaveFile>
#include <QtCore/QTimer>

#include <cerrno>
#include <cstdio>
#include <memory>

#include <signal.h>

namespace {

constexpr int MotionMs = 20;

/** Loads the image that the options name, if any; returns what went wrong, or an empty text. */
QString load(const plc::Options &options, plc::Memory *memory)
{
    QFile file(options.image);
    if (options.image.isEmpty() || (options.save && !file.exists()))
        return QString();
    if (!file.open(QIODevice::ReadOnly))
        return "%1: %2"_s.arg(options.image, file.errorString());
    const QString wrong = plc::loadImage(file.readAll(), memory);
    return wrong.isEmpty() ? QString() : "%1, %2"_s.arg(options.image, wrong);
}

/** Stores the image in the place of the old one; returns what went wrong, or an empty text. */
QString save(const plc::Options &options, const plc::Memory &memory)
{
    const QByteArray text = plc::saveImage(memory);
    QSaveFile file(options.image);
    // Only a flush tells whether the text found room on the disk; commit() alone would put an empty
    // file in the place of a good one.
    errno = 0;
    if (file.open(QIODevice::WriteOnly) && file.write(text) == text.size() && file.flush() &&
        file.commit())
        return QString();
    const int error = errno;
    return "cannot store the memory in %1: %2"_s.arg(
        options.image, error != 0 ? qt_error_string(error) : file.errorString());
}

/** Opens the door that the options ask for; returns what went wrong, or an empty text. */
QString openDoor(const plc::Options &options, std::unique_ptr<plc::Door> *door)
{
    if (options.tcp) {
        auto tcp = std::make_unique<plc::TcpDoor>();
        QString wrong = tcp->open(
            options.anyAddress ? QHostAddress::AnyIPv4 : QHostAddress::LocalHost, options.tcpPort);
        *door = std::move(tcp);
        return wrong;
    }
    // A controller that was killed leaves its link behind, which leads nowhere now.
    if (QFileInfo(options.link).isSymLink() && !QFileInfo::exists(options.link))
        QFile::remove(options.link);
    auto terminal = std::make_unique<plc::PseudoTerminal>();
    QString wrong = terminal->open(options.link);
    *door = std::move(terminal);
    return wrong;
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    plc::Options options;
    if (const auto status = plc::readOptions(application.arguments(), &options))
        return *status;

    plc::Memory memory;
    QString wrong = load(options, &memory);
    if (!wrong.isEmpty())
        return plc::complain(wrong);

    // Taken over before anything exists that has to be cleaned up. A reader of the output who went
    // away must not end the program before that either.
    plc::Signals arriving({SIGTERM, SIGINT, SIGUSR1, SIGUSR2});
    signal(SIGPIPE, SIG_IGN);

    std::unique_ptr<plc::Door> door;
    wrong = openDoor(options, &door);
    if (!wrong.isEmpty()) {
        plc::complain(wrong);
        return 1;
    }

    plc::Controller controller(memory);
    plc::Faults faults(options.faults, options.seed);
    const plc::PacedDoor line(controller, faults, *door, options.line);
    if (options.verbose) {
        controller.setObserver(
            [](const plc::Request &request, plc::Verdict verdict, const QByteArray &) {
                std::fprintf(stderr, "%s\n", qPrintable(plc::requestText(request, verdict)));
            });
        faults.setObserver([](plc::Fault fault) {
            std::fprintf(stderr, "    its reply is disturbed: %s\n", plc::faultName(fault));
        });
    }

    QElapsedTimer clock;
    clock.start();
    QTimer motion;
    if (!options.still) {
        QObject::connect(&motion, &QTimer::timeout, &motion,
                         [&] { plc::move(memory, clock.elapsed()); });
        motion.start(MotionMs);
    }

    const auto printCounts = [&] {
        std::fputs(qPrintable(plc::countsText(controller.counts(), faults)), stderr);
    };
    QObject::connect(&arriving, &plc::Signals::arrived, &application, [&](int number) {
        if (number == SIGUSR1)
            printCounts();
        else if (number == SIGUSR2)
            faults.heal();
        else
            QCoreApplication::quit();
    });

    std::printf("listening on %s\n", qPrintable(door->name()));
    std::fflush(stdout);
    QCoreApplication::exec();

    printCounts();
    if (options.save) {
        wrong = save(options, memory);
        if (!wrong.isEmpty()) {
            plc::complain(wrong);
            return 1;
        }
    }
    return 0;
}
