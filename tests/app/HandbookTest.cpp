#include "app/ContentWindow.h"
#include "app/Handbook.h"
#include "base/Files.h"
#include "preview/ProcessRenderer.h"
#include "tests/app/OpenedUrls.h"
#include "tests/support/EventLoop.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <QAction>
#include <QFileInfo>
#include <QRegularExpression>
#include <QShortcut>
#include <QTest>
#include <QTranslator>

using namespace vellmora;
using namespace vellmora::test;

namespace {

const QString documents = QStringLiteral(VELLMORA_DOCS "/");
const QString handbookText = documents + QStringLiteral("handbuch.md");

class HandbookTest : public testing::Test {
protected:
    HandbookTest() {
        window.window().show();
        window.window().activateWindow();
        if (!QTest::qWaitForWindowActive(&window.window()))
            qFatal("the window does not become active");
        settle();
    }
    QString status() { return window.content().statusText.value(); }

    TestWorkspace workspace;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    ContentWindow window{
        std::make_unique<ContentView>(workspace.makeLibrary(), workspace.panels, documentProcesses()),
        renderer, Theme(SystemFonts::load())};
    OpenedUrls desktop;
};

QString textOf(const QString& path) {
    return QString::fromUtf8(files::read(path));
}

/// All that the first group of the expression matches.
QStringList matches(const QString& text, const char* expression) {
    QStringList found;
    const QRegularExpression pattern(QString::fromUtf8(expression), QRegularExpression::MultilineOption);
    for (auto match = pattern.globalMatch(text); match.hasNext();)
        found.append(match.next().captured(1));
    return found;
}

/// The rows of the handbook's table of the keys that work in the whole window, each "key: what it does".
QStringList keysInHandbook() {
    const QString part = textOf(handbookText)
                             .section(QStringLiteral("### Im ganzen Fenster"), 1)
                             .section(QStringLiteral("\n#"), 0, 0);
    QStringList rows = matches(part, R"(^(\| `.*) \|$)");
    for (QString& row : rows)
        row.remove(QStringLiteral("| `")).replace(QStringLiteral("` | "), QStringLiteral(": "));
    rows.sort();
    return rows;
}

QString german(const QKeySequence& key) {
    return key.toString(QKeySequence::NativeText);
}

}  // namespace

TEST_F(HandbookTest, IsShownByTheHelpKey) {
    const QString page = workspace.path(QStringLiteral("Hand buch #1.html"));
    writeFile(page, "<p>Hilfe</p>");
    handbook::showOnHelpKey(window, page);
    const QString before = status();
    QTest::keyClick(&window.window(), Qt::Key_F1);
    EXPECT_EQ(desktop.shown, QList<QUrl>{QUrl::fromLocalFile(page)});
    EXPECT_EQ(status(), before);

    files::remove(page);
    QTest::keyClick(&window.window(), Qt::Key_F1);
    EXPECT_EQ(desktop.shown.size(), 1);
    EXPECT_EQ(status(), QStringLiteral("Das Handbuch fehlt: ") + page);
}

TEST_F(HandbookTest, NamesEveryKeyOfTheWindowAndNoOther) {
    QTranslator qtTexts;
    ASSERT_TRUE(qtTexts.load(QStringLiteral(":/translations/qtbase_de.qm")));
    QCoreApplication::installTranslator(&qtTexts);
    handbook::showOnHelpKey(window, {});
    QStringList keys;
    for (const QAction* command : window.findChildren<QAction*>()) {
        if (!command->shortcut().isEmpty())
            keys.append(german(command->shortcut()) + QStringLiteral(": ") + command->text());
    }
    EXPECT_GE(keys.size(), 4);
    for (const QShortcut* key : window.window().findChildren<QShortcut*>()) {
        const QString name = german(key->key());
        keys.append(keysInHandbook()
                        .filter(name + QStringLiteral(": "))
                        .value(0, name + QStringLiteral(" is missing")));
    }
    keys.sort();
    EXPECT_EQ(keysInHandbook(), keys);
    QCoreApplication::removeTranslator(&qtTexts);
}

TEST(HandbookTextTest, ShowsEachPictureInLightAndDark) {
    QStringList shown = matches(textOf(handbookText), R"(^!\[.+\]\((.+)\)$)");
    QStringList there;
    for (const QFileInfo& file : QDir(documents + QStringLiteral("pictures")).entryInfoList(QDir::Files)) {
        const QString name = QStringLiteral("pictures/") + file.fileName();
        if (!name.endsWith(QStringLiteral("-dark.png")))
            there.append(name);
        EXPECT_FALSE(QImage(file.filePath()).isNull()) << qPrintable(name);
    }
    shown.sort();
    there.sort();
    EXPECT_GE(shown.size(), 6);
    EXPECT_EQ(shown, there);
    for (const QString& name : there)
        EXPECT_TRUE(QFileInfo::exists(
            documents + QString(name).replace(QStringLiteral(".png"), QStringLiteral("-dark.png"))));
}

TEST(HandbookTextTest, OthersReferToWhatIsThere) {
    const QString top = documents + QStringLiteral("../");
    const QStringList links = matches(textOf(top + QStringLiteral("README.md")), R"(\]\((docs/[^)#]+))");
    EXPECT_TRUE(links.contains(QStringLiteral("docs/handbuch.md")));
    for (const QString& link : links)
        EXPECT_TRUE(QFileInfo::exists(top + link)) << qPrintable(link);
    const QStringList pictures = matches(textOf(top + QStringLiteral("packaging/vellmora.metainfo.xml.in")),
                                         "<image>@VELLMORA_WEBSITE@/(.+)</image>");
    EXPECT_GE(pictures.size(), 2);
    for (const QString& picture : pictures)
        EXPECT_TRUE(QFileInfo::exists(documents + picture)) << qPrintable(picture);
}
