#include "ui/PresetTile.h"

#include <cmath>
#include <optional>

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

QFont nameFont(const Theme& theme) {
    return theme.font(nameSize, Theme::semibold);
}

QFont badgeFont(const Theme& theme) {
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
    : m_nameGlyphs(QRawFont::fromFont(nameFont(theme))),
      m_nameMetrics(nameFont(theme)),
      m_nameWidth(tileWidth - 2 * padding),
      m_nameLine(QFontMetrics(nameFont(theme)).height()),
      m_badge(lineSpacing + QFontMetrics(badgeFont(theme)).height()),
      m_buttons(Button::heightOf(Button::Size::small, theme)) {}

/// Without a width where the font does not have the character, or it is half of one.
std::optional<double> PresetTile::Heights::widthOf(QChar character) const {
    const auto known = m_widths.constFind(character);
    if (known != m_widths.constEnd())
        return *known;
    const QList<quint32> glyphs = m_nameGlyphs.glyphIndexesForString(QString(character));
    const bool isThere = !character.isSurrogate() && glyphs.size() == 1 && glyphs.first() != 0;
    return *m_widths.insert(
        character,
        isThere ? std::optional(m_nameGlyphs.advancesForGlyphIndexes(glyphs).first().x()) : std::nullopt);
}

/// Qt takes much longer to measure a text than to add up the widths of its characters. These are enough for
/// most names.
bool PresetTile::Heights::fitsOneLine(const QString& name) const {
    double sum = 0;
    for (const QChar character : name) {
        const std::optional<double> width = widthOf(character);
        if (!width)
            return m_nameMetrics.horizontalAdvance(name) <= m_nameWidth;
        sum += *width;
    }
    const bool isClose = std::abs(sum - m_nameWidth) < 1;
    return (isClose ? m_nameMetrics.horizontalAdvance(name) : sum) <= m_nameWidth;
}

int PresetTile::Heights::of(const StampPreset& preset) const {
    const int nameLines = fitsOneLine(preset.displayName) ? 1 : maximumNameLines;
    const int texts = nameLines * m_nameLine + (preset.isBuiltin() ? m_badge : 0);
    return 2 * padding + pictureStyle.frameHeight + 2 * pictureStyle.padding + spacing + texts + spacing +
           m_buttons;
}

void PresetTile::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        insert();
}

}  // namespace vellmora
