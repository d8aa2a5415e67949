#pragma once

#include <QString>
#include <QWidget>

namespace vellmora {

enum class Urgency { polite, assertive };

/// Has assistive tools such as screen readers say what happened: at once, or once they have said what they
/// are saying. Where Qt has no announcements (before 6.8), they are told that `source` wants attention, so
/// its name or description must say the same. Does nothing while no such tool listens.
void announce(QWidget& source, const QString& text, Urgency urgency = Urgency::polite);

/// Tells assistive tools that the description of the widget has changed.
void tellDescriptionChanged(QWidget& widget);

/// The name and the description under which assistive tools know the widget.
QString spokenText(QWidget& widget);

}  // namespace vellmora
