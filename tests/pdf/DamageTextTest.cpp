#include "pdf/DamageText.h"
#include "tests/support/GTestQt.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

QList<qsizetype> range(qsizetype first, qsizetype last) {
    QList<qsizetype> pages;
    for (qsizetype page = first; page <= last; ++page)
        pages.append(page);
    return pages;
}

}  // namespace

TEST(DamageTextTest, SaysWhatIsKnownOfADocument) {
    const std::vector<std::pair<DocumentDamage, const char*>> table{
        {{}, ""},
        {{true, false, {}, 0}, "beschädigt und repariert"},
        {{false, true, {}, 0}, "unvollständig: das Ende der Datei fehlt"},
        {{true, true, {}, 0}, "unvollständig: das Ende der Datei fehlt"},
        {{true, false, range(7, 11), 0}, "beschädigt und repariert; Seiten 8 bis 12 fehlen und sind leer"},
        {{true, true, {2}, 1},
         "unvollständig: das Ende der Datei fehlt; Seite 3 fehlt und ist leer; eine weitere Seite fehlt"},
        {{false, false, {}, 4}, "4 weitere Seiten fehlen"},
    };
    for (const auto& [damage, text] : table)
        EXPECT_EQ(damageText(damage), QString::fromUtf8(text));
}

TEST(DamageTextTest, NamesThePagesOfAFileThatLackSomething) {
    const std::vector<std::pair<QList<qsizetype>, const char*>> table{
        {{}, ""},
        {{0}, "Inhalt von Seite 1 fehlt"},
        {{0, 1}, "Inhalt von Seiten 1 und 2 fehlt"},
        {{0, 2, 7, 8, 9}, "Inhalt von Seiten 1, 3 und 8 bis 10 fehlt"},
        {{0, 2, 4, 6}, "Inhalt von Seiten 1, 3, 5 und 7 fehlt"},
        {{0, 2, 4, 6, 8, 20, 21, 22}, "Inhalt von Seiten 1, 3, 5, 7 und 4 weitere fehlt"},
        {range(0, 99999), "Inhalt von Seiten 1 bis 100000 fehlt"},
    };
    for (const auto& [pages, text] : table)
        EXPECT_EQ(missingText({}, pages), QString::fromUtf8(text));
    EXPECT_EQ(missingText({true, true, {1, 2}, 0}, {0, 1, 2}),
              QStringLiteral("Inhalt von Seite 1 fehlt; Seiten 2 und 3 fehlen und sind leer"))
        << "each page once, and nothing on what was mended";
}
