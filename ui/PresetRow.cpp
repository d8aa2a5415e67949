#include "ui/PresetRow.h"

#include "base/Text.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

namespace vellmora {

namespace {

constexpr int padding = 8;
constexpr int spacing = 10;
constexpr int lineSpacing = 2;
constexpr double nameSize = 12;
constexpr double dateSize = 11;

constexpr PresetItem::Look look{12, 0.14, 0.04, 0};
constexpr PictureView::Style pictureStyle{6, 44, 10, 0.06, 24};

}  // namespace

PresetRow::PresetRow(const Callbacks& callbacks, Thumbnails& thumbnails, const Theme& theme, QWidget* parent)
    : PresetItem(look, callbacks, parent),
      m_picture(new PictureView(pictureStyle, thumbnails, this)),
      m_name(new TextLabel({}, theme.font(nameSize, Theme::semibold), Theme::text, this)),
      m_date(new TextLabel({}, theme.font(dateSize), Theme::secondaryText, this)),
      m_insert(new Button(QStringLiteral("+"), Button::Look::bordered, Button::Size::small, theme, this)) {
    m_picture->setFixedWidth(m_picture->height());
    m_name->setMaximumLines(1);
    connect(m_insert, &Button::clicked, this, &PresetRow::insert);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(spacing);
    row->addWidget(m_picture);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(lineSpacing);
    texts->addStretch();
    texts->addWidget(m_name);
    texts->addWidget(m_date);
    texts->addStretch();
    row->addLayout(texts, 1);
    row->addWidget(m_insert);
}

void PresetRow::setData(const Data& newData) {
    PresetItem::setData(newData);
    m_picture->setSource(newData.picture);
    m_name->setText(newData.preset.displayName);
    m_date->setText(germanAbbreviatedDateText(newData.preset.createdAt));
    m_insert->setName(newData.preset.displayName + QStringLiteral(" erneut einfügen"));
}

}  // namespace vellmora
