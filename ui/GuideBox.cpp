#include "ui/GuideBox.h"

#include "ui/TextLabel.h"

namespace vellmora {

namespace {

constexpr int lineSpacing = 8;
constexpr double textSize = 12;

}  // namespace

GuideBox::GuideBox(const Theme& theme, QWidget* parent)
    : GroupBox(QStringLiteral("Bedienung"), theme, parent) {
    content().setSpacing(lineSpacing);
    for (const QString& line :
         {QStringLiteral("1. PDF öffnen"), QStringLiteral("2. Standardstempel oder eigene PNGs nutzen"),
          QStringLiteral("3. Bibliothekseintrag auswählen"),
          QStringLiteral("4. Stempel einfügen, dann ziehen oder skalieren"),
          QStringLiteral("5. Speichern oder Speichern unter…")})
        content().addWidget(new TextLabel(line, theme.font(textSize), Theme::text, this));
}

}  // namespace vellmora
