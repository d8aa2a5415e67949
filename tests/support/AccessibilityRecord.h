#pragma once

#include <QAccessible>
#include <QList>
#include <QString>
#include <QStringList>

namespace vellmora::test {

/// While it lives, keeps what the program tells assistive tools, as a screen reader would get it. One at a
/// time.
class AccessibilityRecord {
public:
    enum class Kind { focus, announcement, selection, name, description, order };
    struct Event {
        Kind kind;
        QAccessible::Role role;
        QString name;
        QString text;  ///< what is said: of an announcement its message, else the description
    };

    /// Nothing is told where no tool listens, and a test can play one only with Qt's own headers.
    static bool canListen();

    AccessibilityRecord();
    ~AccessibilityRecord();
    AccessibilityRecord(const AccessibilityRecord&) = delete;
    AccessibilityRecord& operator=(const AccessibilityRecord&) = delete;

    const QList<Event>& events() const { return m_events; }
    void clear() { m_events.clear(); }
    /// The messages that are said by themselves.
    QStringList announcements() const;
    /// The events as text, one a line.
    QString lines() const;

    /// What is shown below the object, one a line: role, name, description, states and keys.
    static QString tree(QAccessibleInterface* root);
    /// The objects that can have the focus and have no name; the names of no two buttons may be alike.
    static QStringList faults(QAccessibleInterface* root);

private:
    static void handle(QAccessibleEvent* event);
    void add(QAccessibleEvent* event);

    QList<Event> m_events;
};

}  // namespace vellmora::test
