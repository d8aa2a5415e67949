#pragma once

#include "base/Clock.h"
#include "base/FileDescriptor.h"

#include <QDate>
#include <QFileSystemWatcher>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

namespace vellmora {

/// The user's date, followed by the clock: it changes at midnight, and when the machine wakes, the clock is
/// set or the time zone is changed on another day.
class Today : public QObject {
    Q_OBJECT

public:
    explicit Today(Clock clock);
    ~Today() override;

    /// By the clock, whether the change was announced or not.
    QDate date() const;
    /// Looks at the clock, and announces another day.
    void check();

Q_SIGNALS:
    void changed();

private:
    void awaitMidnight();
    void watchClock();
    void armClockWatch();

    Clock m_clock;
    QDate m_announced;
    QTimer m_midnight;
    FileDescriptor m_clockWatch;  ///< readable once the clock was set or the machine has slept
    QSocketNotifier* m_clockChange = nullptr;
    QFileSystemWatcher m_timeZone;
};

}  // namespace vellmora
