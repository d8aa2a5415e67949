#include "preview/PDFView.h"
#include "preview/ProcessRenderer.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"

#include <future>

#include <QTemporaryDir>
#include <QTest>

using namespace vellmora;
using namespace vellmora::test;

namespace {

using Document = std::shared_ptr<const PDFDocument>;

constexpr int pageCount = 2500;

class FirstLookViewTest : public testing::Test {
protected:
    FirstLookViewTest() {
        view.resize(600, 800);
        view.setAutoScales(true);
        view.show();
    }
    /// Shows the first look until its picture is there, and then the document.
    void open(const QByteArray& bytes) {
        const QString path = folder.filePath(QStringLiteral("lang.pdf"));
        writeFile(path, bytes);
        const auto show = [this](const Document& look) {
            QMetaObject::invokeMethod(
                &view, [this, look] { view.setDocument(look); }, Qt::QueuedConnection);
        };
        auto opening = std::async(std::launch::async, [&] {
            return PDFDocument::open(QUrl::fromLocalFile(path), documentProcesses(), nullptr, show);
        });
        ASSERT_TRUE(QTest::qWaitFor([this] { return !view.pictures().picture(0).pixmap.isNull(); }));
        EXPECT_EQ(view.pageDescription(), QStringLiteral("Seite 1"));
        looked = view.pictures().picture(0).pixmap.cacheKey();
        process = renderer.processID();
        view.setDocument(opening.get());
    }

    QTemporaryDir folder;
    ProcessRenderer renderer{QStringLiteral(VELLMORA_RENDERER)};
    PDFView view{renderer, nullptr};
    qint64 looked = 0;
    std::optional<pid_t> process;
};

}  // namespace

TEST_F(FirstLookViewTest, TheDocumentKeepsThePictureAndTheProcessOfItsFirstLook) {
    ASSERT_NO_FATAL_FAILURE(open(pages(pageCount).bytes()));
    EXPECT_EQ(view.pictures().picture(0).pixmap.cacheKey(), looked);
    EXPECT_EQ(view.pageDescription(), QStringLiteral("Seite 1 von 2500"));
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view.pictures().picture(1).pixmap.isNull(); }));
    view.goTo(pageCount - 1);
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view.pictures().picture(pageCount - 1).pixmap.isNull(); }));
    EXPECT_EQ(renderer.processID(), process);
}

TEST_F(FirstLookViewTest, AnotherDocumentThanThatOfTheLookIsDrawnAnew) {
    QByteArray miscounted = pages(pageCount).bytes();
    miscounted.replace("/Count 2500", "/Count 2501");
    ASSERT_NO_FATAL_FAILURE(open(miscounted));
    EXPECT_TRUE(view.pictures().picture(0).pixmap.isNull());
    EXPECT_TRUE(QTest::qWaitFor([this] { return !view.pictures().picture(0).pixmap.isNull(); }));
    EXPECT_NE(renderer.processID(), process);
}
