#include "ui/PresetTile.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace vellmora {

namespace {

constexpr int padding = 10;
constexpr int spacing = 8;
constexpr int lineSpacing = 3;
constexpr int buttonSpacing = 6;
constexpr int maximumNameLines = 2;
constexpr double nameSize = 12;
constexpr double badgeSize = 10;

constexpr PresetItem::Look look{14, 0.16, 0.035, 1.5};
constexpr PictureView::Style pictureStyle{8, 84, 12, 0.06, 24};

TextFont nameFont(const Theme& theme) {
    return theme.font(nameSize, Theme::semibold);
}

TextFont badgeFont(const Theme& theme) {
    return theme.font(badgeSize, Theme::medium);
}

}  // namespace

PresetTile::PresetTile(const Callbacks& callbacks, Thumbnails& thumbnails, const Theme& theme,
                       QWidget* parent)
    : PresetItem(look, callbacks, parent),
      m_picture(new PictureView(pictureStyle, thumbnails, this)),
      m_name(new TextLabel({}, nameFont(theme), Theme::text, this)),
      m_badge(new TextLabel(QStringLiteral("Standard"), badgeFont(theme), Theme::secondaryText, this)),
      m_insert(
          new Button(QStringLiteral("Einfügen"), Button::Look::prominent, Button::Size::small, theme, this)),
      m_delete(new Button(Symbol::trash, Button::Look::destructive, Button::Size::small, theme, this)) {
    m_name->setMaximumLines(maximumNameLines);
    connect(m_insert, &Button::clicked, this, &PresetTile::insert);
    connect(m_delete, &Button::clicked, this, &PresetTile::remove);
    // The grid is one stop for the Tab key. What the buttons do, keys and the menu of the tile do, too.
    for (Button* button : {m_insert, m_delete})
        button->setFocusPolicy(Qt::NoFocus);
    m_delete->ignoreSecondClick();

    auto* stack = new QVBoxLayout(this);
    stack->setContentsMargins(padding, padding, padding, padding);
    stack->setSpacing(spacing);
    stack->addWidget(m_picture);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(lineSpacing);
    texts->addWidget(m_name);
    texts->addWidget(m_badge);
    stack->addLayout(texts);
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing);
    buttons->addWidget(m_insert);
    buttons->addWidget(m_delete);
    buttons->addStretch();
    stack->addLayout(buttons);
    stack->addStretch();
}

void PresetTile::setData(const Data& newData) {
    PresetItem::setData(newData);
    const QString& name = newData.preset.displayName;
    m_picture->setSource(newData.picture);
    m_name->setText(name);
    m_badge->setVisible(newData.preset.isBuiltin());
    m_insert->setName(name + QStringLiteral(" einfügen"));
    m_delete->setName(name + QStringLiteral(" löschen"));
}

PresetTile::Heights::Heights(int tileWidth, const Theme& theme)
    : m_nameFont(nameFont(theme)),
      m_nameWidth(tileWidth - 2 * padding),
      m_badge(lineSpacing + badgeFont(theme).lineHeight()),
      m_buttons(Button::heightOf(Button::Size::small, theme)) {}

int PresetTile::Heights::of(const StampPreset& preset) const {
    const int nameLines = m_nameFont.width(preset.displayName) <= m_nameWidth ? 1 : maximumNameLines;
    const int texts = nameLines * m_nameFont.lineHeight() + (preset.isBuiltin() ? m_badge : 0);
    return 2 * padding + pictureStyle.frameHeight + 2 * pictureStyle.padding + spacing + texts + spacing +
           m_buttons;
}

void PresetTile::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        insert();
}

}  // namespace vellmora
