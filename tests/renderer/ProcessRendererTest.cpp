#include "platform/pdf/PageDrawing.h"
#include "platform/pdf/render/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>

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
        return makePageDrawing(*source.document(), 0);
    }
    /// What the renderer answers; nothing where it does not in time.
    std::optional<QImage> render(const QByteArray& drawing, QSize size = {200, 200}) {
        std::optional<QImage> answer;
        renderer.render(PageRenderRequest::whole(drawing, size),
                        [&](const QImage& image) { answer = image; });
        EXPECT_FALSE(answer) << "answered on a later turn only";
        [[maybe_unused]] const bool isThere = QTest::qWaitFor([&] { return answer.has_value(); }, 10000);
        return answer;
    }
    bool rendersRedPage() {
        const auto page = render(redPage());
        return page && isClose(page->pixelColor(50, 100), Qt::red) &&
               isClose(page->pixelColor(150, 100), Qt::white);
    }

    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER), std::chrono::milliseconds(1500)};
};

}  // namespace

TEST_F(ProcessRendererTest, RendersInAnotherProcess) {
    ASSERT_TRUE(renderer.processID());
    EXPECT_NE(*renderer.processID(), ::getpid());
    EXPECT_TRUE(rendersRedPage());
    EXPECT_TRUE(rendersRedPage());
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
        ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); })) << "killed after " << i % 4 << " ms";
        EXPECT_FALSE(answer->isNull()) << "the page is tried once more";
        ASSERT_TRUE(rendersRedPage());
    }
}

TEST_F(ProcessRendererTest, AProcessThatHangsIsKilledAndReplaced) {
    const pid_t stopped = *renderer.processID();
    ::kill(stopped, SIGSTOP);
    EXPECT_TRUE(render(redPage())->isNull());
    EXPECT_NE(*renderer.processID(), stopped);
    EXPECT_TRUE(QTest::qWaitFor([&] { return ::kill(stopped, 0) != 0; })) << "gone and reaped";
    EXPECT_TRUE(rendersRedPage());
}

TEST_F(ProcessRendererTest, APageThatTakesLongMakesWayForNewerOnesAndIsTriedAgain) {
    ProcessRenderer unlimited(QStringLiteral(VELLMORA_RENDERER), std::chrono::hours(1));
    unlimited.prepare();
    ::kill(*unlimited.processID(), SIGSTOP);
    QStringList served;
    const auto request = [&](const char* name) {
        unlimited.render(
            PageRenderRequest::whole(redPage(), {300, 300}), [&served, name](const QImage& image) {
                served.append(image.isNull() ? QStringLiteral("none") : QString::fromLatin1(name));
            });
    };
    request("slow");
    QTest::qWait(900);
    EXPECT_TRUE(served.isEmpty());
    request("newer");
    request("newest");
    ASSERT_TRUE(QTest::qWaitFor([&] { return served.size() == 3; }));
    EXPECT_EQ(served.join(QLatin1Char(' ')), QStringLiteral("newest newer slow"));
}

TEST_F(ProcessRendererTest, WithoutItsProgramEveryPageIsUnavailable) {
    ProcessRenderer broken(QStringLiteral("/does/not/exist"));
    std::optional<QImage> answer;
    broken.render(PageRenderRequest::whole(redPage(), {10, 10}),
                  [&](const QImage& image) { answer = image; });
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }));
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }));
    EXPECT_TRUE(answer->isNull());
    QTest::qWait(0);
    EXPECT_FALSE(orphan.processID());
}

TEST_F(ProcessRendererTest, RendersAPartAsItLooksInTheWhole) {
    for (const char* rotation : {"", "/Rotate 90"}) {
        PdfBuilder source;
        source.page(std::string("/MediaBox [20 30 120 180] ") + rotation,
                    filledRect("0 0 1", "30 40 20 30") + filledRect("0 1 0", "70.3 90.7 33 44"));
        const QByteArray drawing = makePageDrawing(*source.document(), 0);
        const QSize size = std::string(rotation).empty() ? QSize(1600, 2400) : QSize(2400, 1600);
        const QRect part(700, 600, 840, 700);
        const QImage whole = *render(drawing, size);
        std::optional<QImage> answer;
        renderer.render({drawing, size, part}, [&](const QImage& image) { answer = image; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return answer.has_value(); }));
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
    ASSERT_TRUE(QTest::qWaitFor([&] { return order.size() == 3; }));
    EXPECT_EQ(order, (QList<int>{2, 1, 0}));
}
