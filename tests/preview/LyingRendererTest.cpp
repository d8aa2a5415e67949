#include "pdf/PagePdf.h"
#include "preview/PDFView.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr int patience = 60000;  // milliseconds, on a machine that has other work to do

/// A renderer that lies until it is made sound.
class LyingRendererTest : public testing::Test {
protected:
    void lie(const char* lie) {
        writeFile(m_program + QStringLiteral(".lie"), lie);
        install(QStringLiteral(VELLMORA_LYING_RENDERER));
    }
    void makeSound() { install(QStringLiteral(VELLMORA_RENDERER)); }

    /// What it answers; nothing where it does not.
    std::optional<QImage> render() {
        std::optional<QImage> answer;
        renderer.render(PageRenderRequest::whole(m_pagePdf, {200, 200}),
                        [&](const QImage& image) { answer = image; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience));
        return answer;
    }
    /// A start may take longer than its limit on a busy machine.
    bool rendersRedPageSoon() {
        for (int attempt = 0; attempt < 20; ++attempt) {
            renderer.beginDocument();
            const auto page = render();
            if (page && !page->isNull())
                return isClose(page->pixelColor(50, 100), Qt::red);
        }
        return false;
    }
    static qsizetype openDescriptors() {
        return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries | QDir::System).size();
    }

private:
    void install(const QString& program) {
        QFile::remove(m_program);
        QFile::link(program, m_program);
    }
    QTemporaryDir m_folder;
    QString m_program = m_folder.filePath(QStringLiteral("renderer"));
    QByteArray m_pagePdf =
        makePagePdf(*PdfBuilder().page({}, filledRect("1 0 0", "0 0 595 842")).document(), 0);

protected:
    ProcessRenderer renderer{m_program, std::chrono::seconds(1)};
};

class LieTest : public LyingRendererTest, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_P(LieTest, CostsThePageAndNothingElse) {
    lie(GetParam());
    const qsizetype descriptors = openDescriptors();
    for (int page = 0; page < 3; ++page) {
        const auto image = render();
        ASSERT_TRUE(image);
        EXPECT_TRUE(image->isNull()) << "what was not painted is no picture";
    }
    renderer.beginDocument();
    EXPECT_LE(openDescriptors(), descriptors + 1) << "the socket of a process";
    makeSound();
    EXPECT_TRUE(rendersRedPageSoon());
}

INSTANTIATE_TEST_SUITE_P(, LieTest,
                         testing::Values("never ready", "not ready", "answers without end",
                                         "ready without end", "silent", "ends", "unknown reply",
                                         "ready again", "half a reply", "empty reply", "too long a reply",
                                         "paints nothing", "all but one pixel", "invisible pixels",
                                         "takes the memory away", "descriptors without a picture"));

TEST_F(LyingRendererTest, WhatIsPaintedAfterTheAnswerIsNotSeen) {
    lie("paints on");
    const auto image = render();
    ASSERT_TRUE(image && !image->isNull());
    const QImage taken = image->copy();
    QTest::qWait(100);
    EXPECT_EQ(*image, taken);
}

TEST_F(LyingRendererTest, ASecondAnswerIsNotTakenForThatOfTheNextPage) {
    lie("answers twice");
    for (int page = 0; page < 10; ++page) {
        const auto image = render();
        ASSERT_TRUE(image);
        EXPECT_TRUE(image->isNull() || image->pixelColor(199, 199) == Qt::white);
    }
}

TEST_F(LyingRendererTest, TheViewSaysThatAPageIsNotThereAndShowsItOnceItIs) {
    lie("paints nothing");
    PDFView view(renderer, nullptr);
    view.resize(300, 400);
    view.setAutoScales(true);
    view.setDocument(pages(2).document());
    const auto says = [&](const char* words) {
        view.grab();
        return view.pageDescription().contains(QLatin1String(words));
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { return says("kann nicht angezeigt werden"); }, patience));
    makeSound();
    const auto isShownWhenTurnedTo = [&] {
        view.goTo(1);
        view.goTo(0);
        return QTest::qWaitFor([&] { return !says("nicht") && !view.pictures().picture(0).pixmap.isNull(); },
                               1000);
    };
    EXPECT_TRUE(QTest::qWaitFor(isShownWhenTurnedTo, patience));
}
