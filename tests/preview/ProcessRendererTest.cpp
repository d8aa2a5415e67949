#include "pdf/PagePdf.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

class ProcessRendererTest : public testing::Test {
protected:
    ProcessRendererTest() { renderer.prepare(); }

    static QByteArray redPage() {
        PdfBuilder source;
        source.page("/MediaBox [0 0 100 100]", filledRect("1 0 0", "0 0 50 100"));
        return makePagePdf(*source.document(), 0);
    }
    /// What the renderer answers; nothing where it does not in time.
    std::optional<QImage> render(const QByteArray& pagePdf, QSize size = {200, 200}) {
        std::optional<QImage> answer;
        renderer.render(PageRenderRequest::whole(pagePdf, size),
                        [&](const QImage& image) { answer = image; });
        EXPECT_FALSE(answer) << "answered on a later turn only";
        [[maybe_unused]] const bool isThere = QTest::qWaitFor([&] { return answer.has_value(); }, patience);
        return answer;
    }
    bool rendersRedPage() {
        const auto page = render(redPage());
        return page && isClose(page->pixelColor(50, 100), Qt::red) &&
               isClose(page->pixelColor(150, 100), Qt::white);
    }

    /// Once those that were ended are gone.
    static bool areProcesses(qsizetype count) {
        return QTest::qWaitFor([&] {
            QFile children(QStringLiteral("/proc/thread-self/children"));
            return children.open(QIODevice::ReadOnly) && children.readAll().count(' ') == count;
        });
    }

    static constexpr int patience = 60000;  // milliseconds, on a machine that has other work to do
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER), std::chrono::seconds(6)};
};

}  // namespace

TEST_F(ProcessRendererTest, RendersInAnotherProcess) {
    ASSERT_TRUE(renderer.processID());
    EXPECT_NE(*renderer.processID(), ::getpid());
    EXPECT_TRUE(rendersRedPage());
    EXPECT_TRUE(rendersRedPage());
}

TEST_F(ProcessRendererTest, EachDocumentHasAProcessOfItsOwn) {
    const pid_t unused = *renderer.processID();
    renderer.beginDocument();
    EXPECT_EQ(*renderer.processID(), unused) << "one that has seen nothing yet will do";
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(rendersRedPage());
        const pid_t before = *renderer.processID();
        EXPECT_TRUE(rendersRedPage());
        EXPECT_EQ(*renderer.processID(), before) << "for all of its pages";
        renderer.beginDocument();
        EXPECT_NE(*renderer.processID(), before);
        EXPECT_TRUE(QTest::qWaitFor([&] { return ::kill(before, 0) != 0; })) << "gone and reaped";
    }
}

TEST_F(ProcessRendererTest, ASpareProcessIsThereOnlyWhereADocumentIsExpected) {
    renderer.prepare();
    EXPECT_TRUE(areProcesses(1)) << "one that has seen nothing yet will do";
    ASSERT_TRUE(rendersRedPage());
    EXPECT_TRUE(areProcesses(1));
    const pid_t before = *renderer.processID();
    renderer.prepare();
    renderer.prepare();
    EXPECT_TRUE(areProcesses(2));
    EXPECT_EQ(*renderer.processID(), before) << "the document that is open stays";
    renderer.beginDocument();
    EXPECT_NE(*renderer.processID(), before);
    EXPECT_TRUE(areProcesses(1)) << "it has taken over";
    EXPECT_TRUE(rendersRedPage());
}

TEST_F(ProcessRendererTest, WhatWasAskedForOfTheLastDocumentIsDropped) {
    ASSERT_TRUE(rendersRedPage());
    int answers = 0;
    for (int i = 0; i < 3; ++i) {
        renderer.render(PageRenderRequest::whole(redPage(), {900, 900}), [&](const QImage&) { ++answers; });
        if (i == 1)
            QCoreApplication::processEvents();  // one of them is under way
    }
    renderer.beginDocument();
    EXPECT_TRUE(rendersRedPage());
    EXPECT_EQ(answers, 0);
}

TEST_F(ProcessRendererTest, AnswersWhatCannotBeRenderedAndGoesOn) {
    EXPECT_TRUE(render("no pdf")->isNull());
    EXPECT_TRUE(render({})->isNull());
    EXPECT_TRUE(render(redPage(), {1000000, 1000000})->isNull());
    EXPECT_TRUE(rendersRedPage());
}

TEST_F(ProcessRendererTest, SurvivesTheDeathOfTheProcessAtAnyMoment) {
    for (int i = 0; i < 20; ++i) {
        std::optional<QImage> answer;
        renderer.render(PageRenderRequest::whole(redPage(), {600, 600}),
                        [&](const QImage& image) { answer = image; });
        QTest::qWait(i % 4);
        ::kill(*renderer.processID(), SIGKILL);
        ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience))
            << "killed after " << i % 4 << " ms";
        EXPECT_FALSE(answer->isNull()) << "the page is tried once more";
        ASSERT_TRUE(rendersRedPage());
    }
}

TEST_F(ProcessRendererTest, AProcessThatHangsIsKilledAndReplaced) {
    ASSERT_TRUE(rendersRedPage());
    const pid_t stopped = *renderer.processID();
    ::kill(stopped, SIGSTOP);
    EXPECT_TRUE(render(redPage())->isNull());
    EXPECT_TRUE(QTest::qWaitFor([&] { return ::kill(stopped, 0) != 0; })) << "gone and reaped";
    EXPECT_TRUE(rendersRedPage());
    EXPECT_NE(*renderer.processID(), stopped);
}

TEST_F(ProcessRendererTest, APageThatTakesLongMakesWayForNewerOnesAndIsTriedAgain) {
    ProcessRenderer unlimited(QStringLiteral(VELLMORA_RENDERER), std::chrono::hours(1));
    QStringList served;
    const auto request = [&](const char* name) {
        unlimited.render(
            PageRenderRequest::whole(redPage(), {300, 300}), [&served, name](const QImage& image) {
                served.append(image.isNull() ? QStringLiteral("none") : QString::fromLatin1(name));
            });
    };
    request("first");
    ASSERT_TRUE(QTest::qWaitFor([&] { return served.size() == 1; }, patience));
    served.clear();
    ::kill(*unlimited.processID(), SIGSTOP);
    request("slow");
    QTest::qWait(900);
    EXPECT_TRUE(served.isEmpty());
    request("newer");
    request("newest");
    ASSERT_TRUE(QTest::qWaitFor([&] { return served.size() == 3; }, patience));
    EXPECT_EQ(served.join(QLatin1Char(' ')), QStringLiteral("newest newer slow"));
}

TEST_F(ProcessRendererTest, WithoutItsProgramEveryPageIsUnavailable) {
    ProcessRenderer broken(QStringLiteral("/does/not/exist"));
    std::optional<QImage> answer;
    broken.render(PageRenderRequest::whole(redPage(), {10, 10}),
                  [&](const QImage& image) { answer = image; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience));
    EXPECT_TRUE(answer->isNull());
}

TEST_F(ProcessRendererTest, GoesOnWhenNeitherTheProcessNorItsProgramIsThereAnyMore) {
    const QTemporaryDir folder;
    const QString program = folder.filePath(QStringLiteral("renderer"));
    ASSERT_TRUE(QFile::copy(QStringLiteral(VELLMORA_RENDERER), program));
    ProcessRenderer orphan(program);
    orphan.prepare();
    const auto pid = static_cast<id_t>(*orphan.processID());
    QFile::remove(program);
    ::kill(*orphan.processID(), SIGKILL);
    siginfo_t info{};
    ASSERT_EQ(::waitid(P_PID, pid, &info, WEXITED | WNOWAIT), 0);
    std::optional<QImage> answer;
    FileDescriptor readable;  // takes the number that the socket had
    orphan.render(PageRenderRequest::whole(redPage(), {10, 10}), [&](const QImage& image) {
        answer = image;
        readable = FileDescriptor(::open("/dev/zero", O_RDONLY | O_CLOEXEC));
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience));
    EXPECT_TRUE(answer->isNull());
    QTest::qWait(0);
    EXPECT_FALSE(orphan.processID());
}

/// A renderer that ends at once, until it is mended, and notes each of its starts.
class FailingRendererTest : public ProcessRendererTest {
protected:
    FailingRendererTest() { makeProgram("exit 1"); }
    void makeProgram(const QByteArray& lastLine) {
        QFile script(m_folder.filePath(QStringLiteral("renderer")));
        EXPECT_TRUE(script.open(QIODevice::WriteOnly));
        script.write("#!/bin/sh\necho >> " + QFile::encodeName(m_notes) + "\n" + lastLine + "\n");
        script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    qint64 starts() const { return QFile(m_notes).size(); }
    static QByteArray pageOf(const char* color) {
        return makePagePdf(*PdfBuilder().page({}, filledRect(color, "0 0 50 100")).document(), 0);
    }
    bool renders(const QByteArray& page) {
        std::optional<QImage> answer;
        failing.render(PageRenderRequest::whole(page, {20, 20}),
                       [&](const QImage& image) { answer = image; });
        EXPECT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience));
        return answer && !answer->isNull();
    }

    const QByteArray redPage = pageOf("1 0 0");
    const QByteArray greenPage = pageOf("0 1 0");

private:
    QTemporaryDir m_folder;
    QString m_notes = m_folder.filePath(QStringLiteral("notes"));

protected:
    ProcessRenderer failing{m_folder.filePath(QStringLiteral("renderer"))};
};

TEST_F(FailingRendererTest, OneThatEndsAtItsStartIsStartedOnDemandAFewTimesOnly) {
    failing.prepare();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !failing.processID(); }));
    EXPECT_FALSE(failing.isBroken());
    EXPECT_FALSE(renders(redPage));
    EXPECT_TRUE(failing.isBroken());
    EXPECT_EQ(starts(), 3);
    EXPECT_FALSE(renders(redPage));
    QTest::qWait(200);
    EXPECT_EQ(starts(), 3) << "the same page again";
    EXPECT_FALSE(renders(greenPage));
    EXPECT_EQ(starts(), 4) << "another page";
    failing.beginDocument();
    EXPECT_FALSE(renders(greenPage));
    EXPECT_EQ(starts(), 7) << "another document";
}

TEST_F(FailingRendererTest, ServesAgainOnceItsProgramDoes) {
    EXPECT_FALSE(renders(redPage));
    ASSERT_TRUE(failing.isBroken());
    makeProgram("exec " VELLMORA_RENDERER);
    EXPECT_TRUE(renders(greenPage));
    EXPECT_FALSE(failing.isBroken());
    EXPECT_TRUE(renders(redPage));
}

TEST_F(ProcessRendererTest, RendersAPartAsItLooksInTheWhole) {
    for (const char* rotation : {"", "/Rotate 90"}) {
        PdfBuilder source;
        source.page(std::string("/MediaBox [20 30 120 180] ") + rotation,
                    filledRect("0 0 1", "30 40 20 30") + filledRect("0 1 0", "70.3 90.7 33 44"));
        const QByteArray pagePdf = makePagePdf(*source.document(), 0);
        const QSize size = std::string(rotation).empty() ? QSize(1600, 2400) : QSize(2400, 1600);
        const QRect part(700, 600, 840, 700);
        const QImage whole = *render(pagePdf, size);
        std::optional<QImage> answer;
        renderer.render({pagePdf, size, part}, [&](const QImage& image) { answer = image; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }, patience));
        ASSERT_EQ(answer->size(), part.size());
        int differing = 0;
        for (int y = 0; y < part.height(); ++y) {
            for (int x = 0; x < part.width(); ++x)
                differing +=
                    isClose(answer->pixelColor(x, y), whole.pixelColor(part.x() + x, part.y() + y)) ? 0 : 1;
        }
        EXPECT_LT(differing, part.width() * 2) << rotation;
    }
}

TEST_F(ProcessRendererTest, TheNewestRequestIsServedFirst) {
    QList<int> order;
    for (int i = 0; i < 3; ++i)
        renderer.render(PageRenderRequest::whole(redPage(), {50, 50}),
                        [&order, i](const QImage&) { order.append(i); });
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 3; }, patience));
    EXPECT_EQ(order, (QList<int>{2, 1, 0}));
}
