// The panel's window: two pages, an alarm and a banner above them, and the orders that they offer.
#pragma once

#include <QtWidgets/QtWidgets>

#include "communication.h"

class Window : public QWidget
{
public:
    /** communication lives longer. */
    explicit Window(Communication &communication) : m_communication(communication)
    {
        setWindowTitle("Filling machine");
        auto *rows = new QFormLayout(this);
        for (QWidget *row : QWidgetList{m_banner, m_alarm, m_tabs, m_message})
            rows->addRow(row);
        m_banner->setWordWrap(true);
        m_banner->setStyleSheet(Red);

        const KEY_ADDRESS pump = tag("Pump", "M_bit", 20 * 16 + 3, Bit);
        const KEY_ADDRESS setpoint = tag("Setpoint", "D_W", 200);
        QFormLayout *machine =
            addPage("Machine", {pump, setpoint, tag("Level", "D_W", 101),
                                tag("Bottles", "D_W", 100), tag("Belt", "TX", 0, Bit)});
        addButton(machine, "Start pump", [=] { m_communication.write(pump, 1); });
        addButton(machine, "Stop pump", [=] { m_communication.write(pump, 0); });
        auto *entry = new QSpinBox;
        entry->setRange(-1000, 1000);
        machine->addRow("New setpoint", entry);
        addButton(machine, "Set", [=] { m_communication.write(setpoint, entry->value()); });

        const Tags words = {tag("Speed", "D_W", 500), tag("Dose", "D_W", 501)};
        m_communication.setRecipe(words.first(), {1200, 250});
        QFormLayout *recipe = addPage("Recipe", words);
        addButton(recipe, "Recipe down", [=] { m_communication.transfer(Communication::Down); });
        addButton(recipe, "Recipe up", [=] { m_communication.transfer(Communication::Up); });

        const auto later = Qt::QueuedConnection;
        connect(&communication, &Communication::changed, this, &Window::showValues, later);
        connect(&communication, &Communication::readOnceEnded, this, &Window::showAlarm, later);
        connect(&communication, &Communication::lineChanged, this, &Window::showLine, later);
        connect(&communication, &Communication::orderNews, m_message, &QLabel::setText, later);
        connect(m_tabs, &QTabWidget::currentChanged, this, &Window::showPage);
        showLine("not connected yet");
        showAlarm(false);
        showPage(0);
    }

private:
    QFormLayout *addPage(const QString &title, const Tags &tags)
    {
        auto *form = new QFormLayout(new QWidget);
        for (const KEY_ADDRESS &tag : tags) {
            auto *value = new QLabel;
            value->setObjectName(tag.hostText);
            form->addRow(tag.hostText, value);
        }
        m_pages.append(tags);
        m_tabs->addTab(form->parentWidget(), title);
        return form;
    }

    template <typename Order>
    void addButton(QFormLayout *page, const QString &text, Order order)
    {
        auto *button = new QPushButton(text);
        connect(button, &QPushButton::clicked, this, order);
        page->addRow(button);
    }

    void showPage(int index)
    {
        m_communication.showPage(m_pages[index]);
        showValues();
    }

    /** What is not up to date is grey. */
    void showValues()
    {
        for (const KEY_ADDRESS &tag : m_communication.page()) {
            auto *label = findChild<QLabel *>(tag.hostText);
            label->setNum(m_communication.value(tag));
            label->setEnabled(tag.hostValue1 == Fresh);
            if (tag.hostValue1 == Unknown)
                label->setText("---");
        }
    }

    /** The alarm is read again a moment later, whichever page is shown. */
    void showAlarm(bool good)
    {
        const bool alarm = good && m_communication.value(m_guard) != 0;
        m_alarm->setText(alarm ? "ALARM: guard open" : good ? "No alarm" : "Alarms unknown");
        m_alarm->setStyleSheet(alarm ? Red : "");
        m_alarm->setEnabled(good);
        QTimer::singleShot(AlarmPauseMs, this, [this] { m_communication.readOnce(m_guard); });
    }

    void showLine(const QString &trouble)
    {
        m_banner->setText("Line away: " + trouble + ". Grey is old; orders are ended, not kept.");
        m_banner->setVisible(!trouble.isEmpty());
    }

    enum { Word = 0, Bit = -1, AlarmPauseMs = 1000 };
    static constexpr const char *Red = "background: #b71c1c; color: white; padding: 6px";

    static KEY_ADDRESS tag(const char *label, const char *regName, int address, int bitMark = Word)
    {
        KEY_ADDRESS key;
        key.hostText = label;
        key.regName = regName;
        key.startAddr = address;
        key.bitMark = bitMark;
        key.count = 1;
        return key;
    }

    Communication &m_communication;
    const KEY_ADDRESS m_guard = tag("Guard open", "M_bit", 0, Bit);
    QLabel *m_banner = new QLabel;
    QLabel *m_alarm = new QLabel;
    QLabel *m_message = new QLabel;
    QTabWidget *m_tabs = new QTabWidget;
    QVector<Tags> m_pages;
};
