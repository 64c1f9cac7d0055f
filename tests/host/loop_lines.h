// Two lines for the loop's tests: a simulated one with a panel that keeps books, and one on which
// bytes arrive by script.
#ifndef LOOP_LINES_H
#define LOOP_LINES_H

#include "host/driver/session.h"
#include "host/exchange/loop.h"
#include "host/frames/frame_text.h"
#include "host/line/virtual_line.h"

#include <map>

using namespace host;
using std::chrono::milliseconds;

constexpr char D = 'a';
constexpr char M = 'i';

inline Point words(const char *regName, int address, int count)
{
    return {1, QLatin1String(regName), address, count, false};
}

inline VirtualSettings virtualLine(const char *faults = "", int baud = 115200)
{
    VirtualSettings settings;
    if (*faults && !plc::FaultPlan::parse(QLatin1String(faults), &settings.faults).isEmpty())
        qFatal("no faults: %s", faults);
    settings.line.baud = baud;
    settings.moving = false;
    return settings;
}

/**
 * A panel polls blocks of one length, writes words and several bits, and holds every exchange
 * against the controller's memory.
 */
class Panel
{
public:
    Panel(const Driver &driver, const VirtualSettings &virtualSettings,
          const LoopSettings &settings, int wordsPerBlock)
        : line(virtualSettings),
          loop(driver, line, settings),
          m_session(driver, SessionSettings{1, 3, 127})
    {
        QVector<Point> points;
        for (int first = 0; first < 5000; first += 1000) {
            points.append(words("D_W", first, wordsPerBlock));
            for (int word = first; word <= first + wordsPerBlock; ++word)
                line.memory().setWord(D, word, valueOf(word));
        }
        m_session.monitor(points);
        m_session.conditionReadEnded = [this](bool) { m_proving = false; };
        loop.observer = [this](const Exchange &exchange) { check(exchange); };
        line.open();
    }

    void run(int exchanges)
    {
        for (int i = 0; i < exchanges; ++i) {
            if (writes && i % 20 == 0)
                m_session.write(words("D_W", 6000, 1), {++m_written & 0xFFFF});
            const int bit = i / 20 % 2;
            if (writes && i % 20 == 10)
                m_session.write({1, "M_bit", 16 * 40 + 14, 4, true}, {bit, !bit, bit, !bit});
            const int wanted = loop.wantedWords();
            if (wanted > 0 && !std::exchange(m_proving, true))
                m_session.readOnce(provingPart(words("D_W", 0, 1), wanted));
            loop.exchange();
        }
    }

    VirtualLine line;
    Loop loop;
    bool writes = true;   ///< else there are replies of one length alone
    int wrongValues = 0;  ///< replies with a value of another address
    int wrongOld = 0;     ///< of these, a second behind the first
    int wrongProven = 0;  ///< of these, said to be right
    int timesLost = 0;    ///< verdicts
    int timesUnsure = 0;
    int wrongAcks = 0;  ///< acknowledged writes that the controller does not hold
    int wrongBits = 0;  ///< exchanges behind which bits have changed that nobody writes

private:
    static quint16 valueOf(int word) { return quint16(word * 7 + 1); }

    void check(const Exchange &exchange)
    {
        wrongBits += (line.memory().word(M, 40) & 0x3FFF) || (line.memory().word(M, 41) & 0xFFFC);
        const VARIABLE &item = exchange.frame.var;
        if (exchange.earlier.step != Step::Unproven) {
            if (exchange.earlier.step == Step::Proven)
                wrongProven += m_wrongUnproven;
            timesLost += exchange.earlier.step == Step::Lost;
            timesUnsure += exchange.earlier.step == Step::Unsure;
            m_wrongUnproven = 0;
        }
        if (exchange.outcome != Outcome::Good || item.regName != QLatin1String("D_W"))
            return;
        if (exchange.frame.readCount == 0)
            wrongAcks += line.memory().word(D, 6000) != (m_written & 0xFFFF);
        bool wrong = false;
        const QVector<int> read = readReply(exchange.reply, exchange.request()).words;
        for (int i = 0; i < exchange.frame.readCount; ++i)
            wrong = wrong || read[i] != valueOf(item.startAddr + i);
        wrongValues += wrong;
        m_wrongUnproven += wrong;
        if (!wrong || m_wrongSince < LineTime(0))
            m_wrongSince = wrong ? line.now() : LineTime(-1);
        wrongOld += wrong && line.now() - m_wrongSince > std::chrono::milliseconds(1000);
    }

    LineTime m_wrongSince{-1};
    int m_wrongUnproven = 0;
    bool m_proving = false;
    Session m_session;
    int m_written = 0;
};

/** A line on which bytes arrive at set times behind each request, and time passes by itself. */
class ScriptedLine : public Line
{
public:
    QVector<QVector<QPair<double, QByteArray>>> arrivals;  ///< a list of (ms, bytes) per request
    bool babbles = false;                                  ///< never silent

    bool open() override { return true; }
    bool isOpen() const override { return true; }
    QString errorText() const override { return {}; }
    LineTime now() const override { return m_now; }
    void pause(LineTime duration) override { m_now += duration; }
    LineTime wireTime(int bytes) const override { return bytes * milliseconds(1); }
    int look() override { return 0; }
    bool send(const QByteArray &) override
    {
        if (!arrivals.isEmpty())
            for (const auto &arrival : arrivals.takeFirst())
                m_coming.insert({m_now + LineTime(qint64(arrival.first * 1e6)), arrival.second});
        return true;
    }
    QByteArray receive(LineTime until) override
    {
        if (babbles)
            m_coming.insert({m_now + milliseconds(1), "x"});
        if (m_coming.empty() || m_coming.begin()->first > until) {
            m_now = std::max(m_now, until);
            return {};
        }
        const auto next = *m_coming.begin();
        m_coming.erase(m_coming.begin());
        m_now = std::max(m_now, next.first);
        return next.second;
    }

private:
    LineTime m_now{0};
    std::multimap<LineTime, QByteArray> m_coming;
};

#endif
