#include "library/Today.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <limits>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

#include <QGuiApplication>

namespace vellmora {

/// The link to the time zone's data is in it, and is replaced when the zone is changed.
static const QString timeZoneFolder = QStringLiteral("/etc");

Today::Today(Clock clock) : m_clock(std::move(clock)), m_announced(date()) {
    m_midnight.setSingleShot(true);
    m_midnight.setTimerType(Qt::PreciseTimer);  // others may be late by a twentieth of the day
    connect(&m_midnight, &QTimer::timeout, this, &Today::check);
    m_timeZone.addPath(timeZoneFolder);
    connect(&m_timeZone, &QFileSystemWatcher::directoryChanged, this, &Today::check);
    if (qGuiApp)
        connect(qGuiApp, &QGuiApplication::applicationStateChanged, this, &Today::check);
    watchClock();
    awaitMidnight();
}

Today::~Today() = default;

QDate Today::date() const {
    return m_clock().toLocalTime().date();
}

void Today::check() {
    awaitMidnight();
    if (std::exchange(m_announced, date()) != m_announced)
        Q_EMIT changed();
}

void Today::awaitMidnight() {
    const QDateTime now = m_clock();
    const qint64 wait = now.msecsTo(now.toLocalTime().date().addDays(1).startOfDay());
    m_midnight.start(std::chrono::milliseconds(std::max<qint64>(wait, 1)));
}

/// A timer sleeps with the machine and knows nothing of a clock that is set. The kernel tells of both to
/// who waits for a moment of the clock, here one that never comes.
void Today::watchClock() {
    m_clockWatch = FileDescriptor(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!m_clockWatch.isValid())
        return;
    armClockWatch();
    m_clockChange = new QSocketNotifier(m_clockWatch.get(), QSocketNotifier::Read, this);
    connect(m_clockChange, &QSocketNotifier::activated, this, [this] {
        uint64_t ignored = 0;
        // Fails with ECANCELED, which is the news, and lets the next one come.
        [[maybe_unused]] const ssize_t result = ::read(m_clockWatch.get(), &ignored, sizeof ignored);
        armClockWatch();
        check();
    });
}

void Today::armClockWatch() {
    itimerspec never{};
    never.it_value.tv_sec = std::numeric_limits<int32_t>::max();
    ::timerfd_settime(m_clockWatch.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &never, nullptr);
}

}  // namespace vellmora
