#include "tests/app/Invariants.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>

#include <QRegularExpression>
#include <QSet>

namespace vellmora::test {

namespace {

void checkStamps(ContentView& content) {
    QSet<QUuid> ids;
    qsizetype count = 0;
    for (auto page = content.stampsByPage.value().cbegin(); page != content.stampsByPage.value().cend();
         ++page) {
        for (const StampItem& stamp : page.value()) {
            EXPECT_EQ(stamp.pageIndex, page.key());
            EXPECT_TRUE(std::isfinite(stamp.rect.x) && std::isfinite(stamp.rect.y));
            EXPECT_GT(stamp.rect.width, 0);
            EXPECT_GT(stamp.rect.height, 0);
            EXPECT_DOUBLE_EQ(stamp.rect.width / stamp.rect.height, stamp.aspectRatio);
            EXPECT_FALSE(stamp.imageData.isEmpty());
            ids.insert(stamp.id);
            ++count;
        }
    }
    EXPECT_EQ(ids.size(), count);
    EXPECT_EQ(content.totalStampCount(), count);
}

void checkPage(ContentWindow& shown) {
    ContentView& content = shown.content();
    const auto document = content.pdfDocument.value();
    EXPECT_EQ(bool(document), content.pdfSourceURL.value().has_value());
    if (!document)
        return;
    const qsizetype page = content.currentPageIndex;
    EXPECT_TRUE(page >= 0 && page < std::max<qsizetype>(document->pageCount(), 1)) << page;
    ASSERT_TRUE(shown.editor());
    EXPECT_EQ(shown.editor()->currentPageIndex(), page);
    for (const StampItem& stamp : content.stampsByPage.value().value(page)) {
        const InteractiveStampView* view = shown.editor()->stampView(stamp.id);
        ASSERT_TRUE(view);
        EXPECT_EQ(view->stamp().rect, stamp.rect);
        EXPECT_EQ(view->isSelectedStamp(), content.selectedStampID.value() == stamp.id);
    }
}

void checkLibrary(const StampLibrary& library) {
    QSet<QUuid> ids;
    for (const StampPreset& preset : library.presets())
        ids.insert(preset.id);
    EXPECT_EQ(ids.size(), library.presets().size());
    EXPECT_LE(library.recentPresets().size(), 8);
    EXPECT_EQ(library.selectedPreset().has_value(), !library.presets().isEmpty());
}

void checkMessage(const QString& message) {
    static const QRegularExpression known(QStringLiteral(
        "^(PDF laden, Stempelbibliothek füllen und loslegen\\.|PDF geladen: .+|PDF konnte nicht geladen "
        "werden\\. .+|"
        "Bitte eine PDF-Datei ablegen\\.|Nur PDF-Dateien werden unterstützt\\.|Stempel importiert: .+|"
        "Stempel konnte nicht importiert werden: .+|Stempel auf Seite \\d+ eingefügt: .+|Kein aktiver "
        "Stempel gewählt\\.|"
        "Stempel konnte nicht vorbereitet werden\\.|Ausgewählter Stempel gelöscht\\.|Stempel aus "
        "Bibliothek entfernt\\.|"
        "Stempel konnte nicht entfernt werden: .+|Original überschrieben: .+|Fehler beim Überschreiben: "
        ".+|"
        "PDF gespeichert: .+|Fehler beim Speichern unter: .+|Speichern unter abgebrochen\\.|"
        "Laden abgebrochen\\.|Speichern abgebrochen\\.)$"));
    EXPECT_TRUE(known.match(message).hasMatch()) << message.toStdString();
}

}  // namespace

void checkInvariants(ContentWindow& shown) {
    checkStamps(shown.content());
    checkPage(shown);
    checkLibrary(shown.content().stampLibrary());
    checkMessage(shown.content().statusText);
}

}  // namespace vellmora::test
