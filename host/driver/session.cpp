// The host's side of the driver: initialisation, callback, and values in and out.
#include "host/driver/session.h"

#include "host/output/failure.h"

#include <QtCore/QMutexLocker>

#include <algorithm>
#include <numeric>

namespace host {

namespace {

constexpr int RecipeUnits = 65536;

int bytesPerUnit(const Point &point)
{
    return point.isBit ? 1 : 2;
}

KEY_ADDRESS keyOf(const Point &point)
{
    KEY_ADDRESS key;
    key.stationNo = point.stationNo;
    key.regName = point.regName;
    key.startAddr = point.address;
    key.bitMark = point.isBit ? -1 : 0;
    key.count = point.count;
    return key;
}

bool overlap(const Point &first, const Point &next)
{
    return first.stationNo == next.stationNo && first.regName == next.regName &&
           next.address < first.address + first.count;
}

}  // namespace

Session *Session::s_session = nullptr;

Session::Session(const Driver &driver, const SessionSettings &settings)
    : m_driver(driver), m_shared(SharedBlockBytes), m_recipe(2 * RecipeUnits)
{
    Q_ASSERT(!s_session);
    s_session = this;
    m_driver.setAddrValueChangeCallBack(&Session::signal);
    restart(settings);
}

Session::~Session()
{
    m_driver.setAddrValueChangeCallBack(nullptr);
    int result = 0;
    m_driver.initProperty(nullptr, nullptr, nullptr, &result, "", nullptr);
    s_session = nullptr;
}

void Session::restart(const SessionSettings &settings)
{
    m_settings = settings;
    const QByteArray properties = "%1#0#0#%2#%3"_s.arg(m_settings.reportNumber)
                                      .arg(m_settings.retryLimit)
                                      .arg(m_settings.blockLimit)
                                      .toLatin1();
    int result = 0;
    m_driver.initProperty(m_shared.data(), this, m_recipe.data(), &result, properties.constData(),
                          &m_mutex);
}

int Session::monitor(const QVector<Point> &points)
{
    QList<KEY_ADDRESS> keys;
    for (const Point &point : points)
        keys.append(keyOf(point));
    return m_driver.addrMerge(keys);
}

void Session::readOnce(const Point &point)
{
    m_driver.addConditionRead(keyOf(point), ConditionReadKind);
}

void Session::write(const Point &point, const QVector<int> &values, int kind)
{
    Q_ASSERT(values.size() == point.count);
    std::vector<unsigned char> bytes;
    for (const int value : values) {
        bytes.push_back(static_cast<unsigned char>(value & 0xFF));
        if (!point.isBit)
            bytes.push_back(static_cast<unsigned char>(value >> 8 & 0xFF));
    }
    m_driver.setData(point.stationNo, point.regName, point.address, point.count, bytes.data(),
                     kind);
}

QVector<int> Session::values(const Point &point) const
{
    const int step = bytesPerUnit(point);
    std::vector<unsigned char> bytes(static_cast<size_t>(point.count * step));
    m_driver.getData(point.stationNo, point.regName, point.address, point.count, bytes.data());
    QVector<int> values;
    for (size_t i = 0; i < bytes.size(); i += static_cast<size_t>(step))
        values.append(point.isBit ? bytes[i] : bytes[i] + 256 * bytes[i + 1]);
    return values;
}

QVector<int> Session::setRecipe(const QVector<Point> &points)
{
    QVector<int> order(points.size());
    std::iota(order.begin(), order.end(), 0);
    std::sort(order.begin(), order.end(),
              [&](int left, int right) { return rangeOf(points[left]) < rangeOf(points[right]); });

    QVector<int> firstUnits(points.size());
    QVector<_RCP_VAR_PRO> entries;
    const Point *previous = nullptr;
    int unit = 0;
    for (const int index : std::as_const(order)) {
        const Point &point = points[index];
        if (previous && overlap(*previous, point))
            throw Failure("recipe: %1 and %2 overlap"_s.arg(pointText(m_driver, *previous),
                                                            pointText(m_driver, point)),
                          BadInput);
        if (point.count > RecipeUnits - unit)
            throw Failure("recipe: more than %1 values"_s.arg(RecipeUnits), BadInput);
        _RCP_VAR_PRO entry;
        entry.ownerKey = m_settings.reportNumber;
        entry.stationNo = point.stationNo;
        entry.regName = point.regName;
        entry.startAddr = point.address;
        entry.count = point.count;
        entry.bufIndex = unit;
        entries.append(entry);
        firstUnits[index] = unit;
        unit += point.count;
        previous = &point;
    }
    m_driver.setRcpAddress(entries);
    return firstUnits;
}

void Session::request(int position)
{
    const QMutexLocker locker(&m_mutex);
    m_shared[static_cast<size_t>(position)] = 1;
}

bool Session::isRequested(int position) const
{
    const QMutexLocker locker(&m_mutex);
    return m_shared[static_cast<size_t>(position)] != 0;
}

bool Session::recipeBusy() const
{
    return isRequested(RecipeWriteRequest) || isRequested(RecipeReadRequest);
}

// The frames of a recipe carry the kind of whatever was sent before them.
bool Session::isReadStep(const FRAME_PRO &frame)
{
    const int kind = frame.var.kind;
    const bool isWrite = kind >= WriteKind && kind != ConditionReadKind && kind != CyclicReadKind;
    return frame.readCount > 0 &&
           (isWrite || (s_session && s_session->isRequested(RecipeWriteRequest)));
}

void Session::setRecipeUnit(int unit, int value)
{
    const size_t byte = 2 * static_cast<size_t>(unit);
    m_recipe.at(byte) = static_cast<unsigned char>(value & 0xFF);
    m_recipe.at(byte + 1) = static_cast<unsigned char>(value >> 8 & 0xFF);
}

int Session::recipeUnit(int unit) const
{
    const size_t byte = 2 * static_cast<size_t>(unit);
    return m_recipe.at(byte) + 256 * m_recipe.at(byte + 1);
}

void Session::signal(int first, int stationNo, const QString &text, int address)
{
    Q_UNUSED(first)
    const Session &session = *s_session;
    if (text == "-1"_s) {
        if (session.conditionReadEnded)
            session.conditionReadEnded(address == 0);
    } else if (text == "RWI"_s) {
        if (session.recipeUnitRead)
            session.recipeUnitRead(address);
    } else if (session.pointChanged) {
        session.pointChanged(stationNo, text, address);
    }
}

}  // namespace host
