// A controller with tolvane-plc's options that acknowledges what it does not do. The environment
// variable LIE chooses how it treats writes to some words of D.
#include <QCoreApplication>
#include <QFile>
#include <csignal>
#include <cstdio>

#include "plc/image.h"
#include "plc/line.h"
#include "plc/options.h"
#include "plc/pseudo_terminal.h"
#include "plc/signals.h"

namespace {

constexpr char D = 'a';
constexpr int FirstWord = 64;
constexpr int LastWord = 79;
constexpr int NobodysWord = 270;

/** Called when a request was carried out. */
void lie(const plc::Request &request, plc::Memory *memory, const plc::Memory &before)
{
    static const QByteArray lie = qgetenv("LIE");
    const int word = qMax(FirstWord, request.word);
    if (request.command != 'w' || request.device != D || word > LastWord ||
        word >= request.word + request.words)
        return;
    if (lie == "forgets a word")
        memory->setWord(D, word, before.word(D, word));
    else if (lie == "spoils another word")
        memory->setWord(D, NobodysWord, quint16(memory->word(D, NobodysWord) + 1));
}

}  // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    plc::Options options;
    if (const auto status = plc::readOptions(application.arguments(), &options))
        return *status;
    plc::Memory memory;
    QFile image(options.image);
    if (!image.open(QIODevice::ReadWrite) || !plc::loadImage(image.readAll(), &memory).isEmpty())
        return plc::complain(QStringLiteral("cannot load the image"));

    plc::Signals arriving({SIGTERM, SIGUSR2});
    plc::PseudoTerminal terminal;
    const QString wrong = terminal.open(QString());
    if (!wrong.isEmpty())
        return plc::complain(wrong);
    plc::Memory before = memory;
    plc::Controller controller(memory);
    controller.setObserver([&](const plc::Request &request, plc::Verdict, const QByteArray &) {
        lie(request, &memory, before);
        before = memory;
    });
    plc::Faults faults(options.faults, options.seed);
    const plc::Line line(controller, faults, terminal, options.line);
    QObject::connect(&arriving, &plc::Signals::arrived, &application, [&](int number) {
        if (number == SIGUSR2)
            faults.heal();
        else
            QCoreApplication::quit();
    });
    std::printf("listening on %s\n", qPrintable(terminal.name()));
    std::fflush(stdout);
    QCoreApplication::exec();

    const QByteArray text = plc::saveImage(memory);
    return image.resize(0) && image.seek(0) && image.write(text) == text.size() ? 0 : 1;
}
