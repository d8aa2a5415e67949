#include "base/Error.h"
#include "pdf/DocumentProcesses.h"
#include "pdf/PagePdf.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestPdf.h"

#include <csignal>
#include <functional>

#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr int longest = 2000;  // of the documents that are read at once

class FirstLookTest : public testing::Test {
protected:
    using Document = std::shared_ptr<const PDFDocument>;

    Document open(const QByteArray& bytes, DocumentProcesses& processes = documentProcesses()) {
        const QString path = folder.filePath(QStringLiteral("lang.pdf"));
        writeFile(path, bytes);
        return PDFDocument::open(QUrl::fromLocalFile(path), processes, nullptr, [this](const Document& look) {
            EXPECT_FALSE(firstLook);
            firstLook = look;
            if (onFirstLook)
                onFirstLook();
        });
    }

    QTemporaryDir folder;
    Document firstLook;
    std::function<void()> onFirstLook;
};

}  // namespace

TEST_F(FirstLookTest, IsTheFirstPageOfADocumentThatIsLong) {
    const Document document = open(pages(longest + 1).bytes());
    ASSERT_TRUE(firstLook);
    EXPECT_TRUE(firstLook->isFirstLook());
    EXPECT_EQ(firstLook->pageCount(), 1);
    EXPECT_EQ(*firstLook->page(0), *document->page(0));
    EXPECT_EQ(document->firstLook(), firstLook);
    EXPECT_FALSE(document->isFirstLook());
    EXPECT_EQ(document->pageCount(), longest + 1);
    Output drawn(makePagePdf(*firstLook, 0));
    EXPECT_EQ(drawn.contentOf("/P"), Output(makePagePdf(*document, 0)).contentOf("/P"));
    EXPECT_FALSE(makePagePdf(*document, longest).isEmpty());

    firstLook.reset();
    EXPECT_EQ(open(pages(longest).bytes())->pageCount(), longest);
    EXPECT_FALSE(firstLook);
}

TEST_F(FirstLookTest, IsNotTakenForTheDocumentWhereTheOtherPagesAreOdd) {
    QByteArray miscounted = pages(longest + 1).bytes();
    const QByteArray count = "/Count " + QByteArray::number(longest + 1);
    ASSERT_TRUE(miscounted.contains(count));
    miscounted.replace(count, "/Count " + QByteArray::number(longest + 2));
    const Document document = open(miscounted);
    EXPECT_TRUE(firstLook);
    EXPECT_FALSE(document->firstLook());
    EXPECT_EQ(document->pageCount(), longest + 1);
    EXPECT_EQ(document->damage().uncountedPages, 1);
    EXPECT_FALSE(makePagePdf(*document, 0).isEmpty());
}

TEST_F(FirstLookTest, CostsNothingWhereTheProcessEndsOverIt) {
    onFirstLook = [this] { ::kill(firstLook->processID().value(), SIGKILL); };
    const Document document = open(pages(longest + 1).bytes());
    EXPECT_EQ(makePagePdf(*firstLook, 0), QByteArray());
    EXPECT_FALSE(document->firstLook());
    EXPECT_EQ(document->pageCount(), longest + 1);
    EXPECT_FALSE(makePagePdf(*document, 0).isEmpty());
}

TEST_F(FirstLookTest, IsNotBelievedTwice) {
    for (const char* lie : {"begun again", "begun with two pages"}) {
        qputenv("VELLMORA_LIE", lie);
        DocumentProcesses processes(QStringLiteral(VELLMORA_LYING_DOCUMENT));
        EXPECT_THROW(open(pages(2).bytes(), processes), Error) << lie;
        qunsetenv("VELLMORA_LIE");
        firstLook.reset();
    }
}
