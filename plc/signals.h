// Process signals as events of the Qt loop.
#pragma once

#include <QtCore/QObject>

#include <initializer_list>

namespace plc {

class Signals : public QObject
{
    Q_OBJECT

public:
    /** Takes over these signals of the process, for as long as it runs. */
    explicit Signals(std::initializer_list<int> numbers);

signals:
    void arrived(int number);

private:
    int m_descriptor;
};

}  // namespace plc
