// tolvane-panel: a small panel on a serial line, for whoever writes his own. To be read in this
// order: driver.h, communication.h, line.h, window.h.
#include <csignal>

#include "window.h"

static volatile std::sig_atomic_t interrupted = 0;

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2 || arguments[1].startsWith('-')) {
        qCritical("usage: tolvane-panel DEVICE [LIBRARY [PICTURE]]");
        return 2;
    }
    std::signal(SIGINT, [](int) { interrupted = 1; });
    std::signal(SIGTERM, [](int) { interrupted = 1; });

    const Driver driver(arguments.value(2, "tolvane_link"));
    Communication communication(driver, arguments[1]);
    Window window(communication);
    window.show();
    communication.start();

    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &window, [&] {
        bool complete = arguments.size() > 3;
        for (const QLabel *label : window.findChildren<QLabel *>())
            complete = complete && (label->isEnabled() || !label->isVisible());
        if (interrupted || (complete && window.grab().save(arguments[3])))
            window.close();
    });
    look.start(100);
    return QApplication::exec();
}
