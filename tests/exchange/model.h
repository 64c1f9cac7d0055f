// The driver as plainly as it can be told: a map of units, two queues and the blocks that are read
// in turn; no index, nothing kept for speed. What it shows, reports and asks for is what the driver
// must show, report and ask for.
#ifndef TOLVANE_TESTS_EXCHANGE_MODEL_H
#define TOLVANE_TESTS_EXCHANGE_MODEL_H

#include <deque>
#include <map>
#include <tuple>

#include "bench.h"

/**
 * Words of M and D, bits of M and contacts TX, of small addresses and stations. No full queues, no
 * calls from inside a report; at most 127 words or 1024 bits a call, block limits from 1.
 */
class Model
{
    struct Unit
    {
        int shown() const { return isWritten ? written : read; }

        int read = 0;
        int written = 0;
        bool isWritten = false;
        bool isMonitored = false;
        unsigned monitoredBits = 0;
        unsigned marks = 0;  // two a bit, of writes on their way
    };
    struct Item
    {
        Range range;
        QByteArray values;
        Ranges entries;  // of a recipe block that is read
    };
    struct Frame
    {
        char command;
        int word;
        int words;
    };
    typedef std::deque<Item> Queue;
    enum State { Idle, Write, Condition, Cyclic, RecipeWrite, RecipeRead };

public:
    Model(int blockLimit, int tries, bool keepsWrites)
        : buffer(2 * Bench::RecipeUnits),
          limit_(blockLimit),
          tries_(tries),
          keepsWrites_(keepsWrites)
    {
    }

    int monitor(const Ranges &keys);
    void condition(const Range &range);
    int recipe(Ranges entries);
    void write(const Range &range, const QByteArray &values);
    QByteArray get(const Range &range);
    /** The next request, or the same until it has ended; as Bench::exchange() names it. */
    QString request();
    /** That the request was answered, or not; the result that the driver gives. */
    int good();
    int bad();

    plc::Memory memory;                 ///< of the controller
    std::vector<unsigned char> buffer;  ///< the recipe's
    unsigned char asked[2] = {0, 0};    ///< the request bytes, writing and reading
    QStringList reports;                ///< as Bench::calls has them

private:
    Unit &unitAt(const Range &range, int address);
    void enqueue(Queue &queue, const Item &item);
    void report(int station, const QString &name, int address);
    void reportWord(const Range &range, int word, const Unit &unit, int changed);
    bool takeItem();
    void takeRecipeBlock();
    bool isWriting() const { return state_ == Write || state_ == RecipeWrite; }
    void storeRead(const QVector<int> &words);
    void copyRecipe(const QVector<int> &words);
    void settle(bool ok);
    void finish(bool failed);

    int limit_;
    int tries_;
    bool keepsWrites_;
    std::map<std::tuple<int, QString, int>, Unit> units_;
    Queue writes_;
    Queue conditions_;
    Range latestCondition_;
    Ranges blocks_;
    size_t nextBlock_ = 0;
    std::vector<Ranges> recipe_;  // the entries of each block
    bool isRefused_ = false;
    size_t recipeBlock_ = 0;
    int inARow_ = 0;
    State state_ = Idle;
    Item item_;
    bool isQueueHead_ = false;
    std::deque<Frame> frames_;
    QVector<int> merged_;
    int failures_ = 0;
};

#endif
