#include "ui/ActiveStampBox.h"

#include "ui/Symbols.h"

#include <utility>

#include <QHBoxLayout>

namespace vellmora {

namespace {

constexpr int buttonSpacing = 8;
constexpr int markSpacing = 5;
constexpr int markSymbolSize = 14;
constexpr int hintSymbolSize = 24;
constexpr double nameSize = 13;
constexpr double markSize = 11;
constexpr double hintSize = 12;
constexpr PictureView::Style pictureStyle{8, 180, 12, 0.08, 24};

/// A vertical stack without margins. The widget that it fills is shown and hidden as a whole.
QVBoxLayout* makeStack(QWidget* widget) {
    auto* stack = new QVBoxLayout(widget);
    stack->setContentsMargins({});
    stack->setSpacing(GroupBox::itemSpacing);
    return stack;
}

QWidget* makeBuiltinMark(const Theme& theme, QWidget* parent) {
    auto* mark = new QWidget(parent);
    auto* row = new QHBoxLayout(mark);
    row->setContentsMargins({});
    row->setSpacing(markSpacing);
    row->addWidget(new SymbolView(Symbol::starOnSquares, markSymbolSize, Theme::text, mark));
    row->addWidget(new TextLabel(QStringLiteral("Standardstempel"), theme.font(markSize, Theme::medium),
                                 Theme::text, mark));
    row->addStretch();
    return mark;
}

}  // namespace

ActiveStampBox::ActiveStampBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, const Theme& theme,
                               QWidget* parent)
    : GroupBox(QStringLiteral("Aktiver Stempel"), theme, parent),
      m_callbacks(std::move(callbacks)),
      m_stamp(makeStamp(thumbnails, theme)),
      m_hint(makeHint(theme)) {
    content().addWidget(m_stamp);
    content().addWidget(m_hint);
}

QWidget* ActiveStampBox::makeStamp(Thumbnails& thumbnails, const Theme& theme) {
    auto* stamp = new QWidget(this);
    m_picture = new PictureView(pictureStyle, thumbnails, stamp);
    m_picture->onLoaded = [this](bool isMissing) { showStamp(!isMissing); };
    m_name = new TextLabel({}, theme.font(nameSize, Theme::semibold), Theme::text, stamp);
    m_name->setMaximumLines(2);
    m_builtinMark = makeBuiltinMark(theme, stamp);
    m_insert =
        new Button(QStringLiteral("Einfügen"), Button::Look::bordered, Button::Size::regular, theme, stamp);
    m_remove =
        new Button(QStringLiteral("Entfernen"), Button::Look::bordered, Button::Size::regular, theme, stamp);
    m_insert->setAccessibleName(QStringLiteral("Aktiven Stempel einfügen"));
    m_remove->setAccessibleName(QStringLiteral("Aktiven Stempel entfernen"));
    connect(m_insert, &Button::clicked, this, [this] { m_callbacks.onInsert(*m_preset); });
    connect(m_remove, &Button::clicked, this, [this] { m_callbacks.onDelete(*m_preset); });

    auto* stack = makeStack(stamp);
    stack->addWidget(m_picture);
    stack->addWidget(m_name);
    stack->addWidget(m_builtinMark);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing);
    buttons->addWidget(m_insert);
    buttons->addWidget(m_remove);
    buttons->addStretch();
    stack->addLayout(buttons);
    return stamp;
}

QWidget* ActiveStampBox::makeHint(const Theme& theme) {
    auto* hint = new QWidget(this);
    auto* stack = makeStack(hint);
    stack->addWidget(new SymbolView(Symbol::photoOnRectangle, hintSymbolSize, Theme::text, hint));
    stack->addWidget(new TextLabel(QStringLiteral("Kein Stempel gewählt"), theme.font(Theme::bodySize),
                                   Theme::text, hint));
    auto* explanation =
        new TextLabel(QStringLiteral("Importiere einmal deine PNG-Stempel. Danach bleiben sie in der "
                                     "Bibliothek und können direkt wiederverwendet werden."),
                      theme.font(hintSize), Theme::secondaryText, hint);
    explanation->setWordWrap(true);
    stack->addWidget(explanation);
    return hint;
}

void ActiveStampBox::showStamp(bool isLoadable) {
    const bool isShown = m_preset && isLoadable;
    m_stamp->setVisible(isShown);
    m_hint->setVisible(!isShown);
}

void ActiveStampBox::setPreset(const std::optional<StampPreset>& preset) {
    m_preset = preset;
    const DeferredPicture picture = preset ? m_callbacks.pictureOf(*preset) : DeferredPicture();
    showStamp(!picture.version.isEmpty() && !m_picture->isKnownToBeMissing(picture));
    if (!preset)
        return;
    m_picture->setSource(picture);
    m_name->setText(preset->displayName);
    m_builtinMark->setVisible(preset->isBuiltin());
}

void ActiveStampBox::setHasDocument(bool hasDocument) {
    m_insert->setEnabled(hasDocument);
}

}  // namespace vellmora
