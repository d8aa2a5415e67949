// Writes the sample document of the guided tour: sample_pdf OUT.pdf

#include "base/SystemFonts.h"

#include <QGuiApplication>
#include <QPageSize>
#include <QPainter>

#include <QPdfWriter>

using namespace vellmora;

namespace {

constexpr int resolution = 72;  // one unit of the painter for each point of the page

const QString paragraph = QStringLiteral(
    "Der Vermieter überlässt dem Mieter die im Übergabeprotokoll bezeichneten Räume zur Nutzung als Büro. "
    "Die Übergabe erfolgt besenrein; Schlüssel, Zählerstände und sichtbare Mängel werden schriftlich "
    "festgehalten. "
    "Änderungen und Ergänzungen dieses Vertrages bedürfen der Schriftform.");

void drawPage(QPainter& painter, const SystemFonts& fonts, int number) {
    painter.setFont(fonts.font(22, QFont::Bold));
    painter.drawText(QRectF(72, 72, 451, 40), Qt::AlignLeft, QStringLiteral("Mietvertrag über Büroräume"));
    for (int i = 0; i < 6; ++i) {
        const double top = 130 + i * 100;
        painter.setFont(fonts.font(12, QFont::Bold));
        painter.drawText(QRectF(72, top, 451, 20), Qt::AlignLeft,
                         QStringLiteral("§ %1").arg((number - 1) * 6 + i + 1));
        painter.setFont(fonts.font(11, QFont::Normal));
        painter.drawText(QRectF(72, top + 20, 451, 76), Qt::AlignLeft | Qt::TextWordWrap, paragraph);
    }
    painter.drawText(QRectF(72, 780, 451, 20), Qt::AlignHCenter,
                     QStringLiteral("Seite %1 von 2").arg(number));
}

}  // namespace

int main(int argc, char** argv) {
    const QGuiApplication app(argc, argv);
    if (argc != 2)
        return 1;
    const SystemFonts fonts = SystemFonts::load();
    QPdfWriter writer(QString::fromLocal8Bit(argv[1]));
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins({});
    writer.setResolution(resolution);
    QPainter painter(&writer);
    drawPage(painter, fonts, 1);
    writer.newPage();
    drawPage(painter, fonts, 2);
    return painter.end() ? 0 : 1;
}
