#include "base/Error.h"
#include "pdf/PagePdf.h"
#include "tests/support/DrawnPdf.h"
#include "tests/support/GTestQt.h"
#include "tests/support/RewrittenPdf.h"
#include "tests/support/TestDocuments.h"

using namespace vellmora;
using namespace vellmora::test;

namespace {

const std::string mark = "0.5 0.5 0.5 rg 0 0 50 50 re f";

/// Whether the page has, when it is drawn, the content that it has in `pages`.
bool hasContent(const PDFDocument& document, qsizetype index) {
    return Output(makePagePdf(document, index)).contentOf("/P").find(mark) != std::string::npos;
}

/// The number of pages, all of which must have their content; −1 for a file that does not open.
qsizetype readablePages(const QByteArray& bytes) {
    std::shared_ptr<const PDFDocument> document;
    try {
        document = documentOf(bytes);
    } catch (const Error&) {
        return -1;
    }
    for (qsizetype i = 0; i < document->pageCount(); ++i)
        EXPECT_TRUE(hasContent(*document, i)) << "page " << i;
    return document->pageCount();
}

QByteArray upTo(const QByteArray& bytes, const char* text) {
    return bytes.left(bytes.lastIndexOf(text));
}

/// Encryption of every kind that a file may have, with a user password.
std::vector<WriterSettings> encryptions(const char* password) {
    return {
        [=](QPDFWriter& w) { w.setR2EncryptionParametersInsecure(password, "o", true, true, true, true); },
        [=](QPDFWriter& w) {
            w.setR3EncryptionParametersInsecure(password, "o", true, true, true, true, true, true,
                                                qpdf_r3p_full);
        },
        [=](QPDFWriter& w) {
            w.setR4EncryptionParametersInsecure(password, "o", true, true, true, true, true, true,
                                                qpdf_r3p_full, true, true);
        },
        [=](QPDFWriter& w) {
            w.setR5EncryptionParameters(password, "o", true, true, true, true, true, true, qpdf_r3p_full,
                                        true);
        },
        [=](QPDFWriter& w) {
            w.setR6EncryptionParameters(password, "o", true, true, true, true, true, true, qpdf_r3p_full,
                                        true);
        },
    };
}

}  // namespace

TEST(FileRepairTest, ReadsFilesWithoutTheirEnd) {
    const QByteArray whole = pages(3).bytes();
    EXPECT_EQ(readablePages(upTo(whole, "startxref")), 3);
    EXPECT_EQ(readablePages(upTo(whole, "trailer")), 3);
    EXPECT_EQ(readablePages(upTo(whole, "startxref") + "trailer << /A ] ] ] ] ] ] ] ] >>"), 3);
    EXPECT_EQ(readablePages(upTo(whole, "startxref") + "trailer << /Root 1 0 R"), 3);
    EXPECT_EQ(readablePages(upTo(whole, "xref\n0 1")), 3);
    QByteArray withoutCatalog = upTo(whole, "xref\n0 1");
    withoutCatalog.replace("/Catalog", "/Unknown");
    EXPECT_EQ(readablePages(withoutCatalog), 3) << "anything with /Pages serves";
    withoutCatalog.replace("/Pages 2 0 R", "");
    EXPECT_EQ(readablePages(withoutCatalog), 3) << "the root of the page tree serves";
    EXPECT_EQ(readablePages(withoutCatalog.mid(withoutCatalog.indexOf("3 0 obj"))), 3)
        << "the pages themselves serve";
}

TEST(FileRepairTest, ReadsFilesWithWrongNumbers) {
    const QByteArray whole = pages(3).bytes();
    const auto replaced = [&whole](const char* before, const char* after) {
        return readablePages(QByteArray(whole).replace(before, after));
    };
    EXPECT_EQ(replaced("/Length ", "/Length 9"), 3);
    EXPECT_EQ(replaced("/Length ", "/Size "), 3);
    EXPECT_EQ(replaced("/Length ", "/Length 9223372036854775807 /Stated "), 3);
    EXPECT_EQ(replaced("/Length ", "/Length -9223372036854775808 /Stated "), 3);
    EXPECT_EQ(replaced("startxref\n", "startxref\n9"), 3);
    EXPECT_EQ(replaced("/Root 1 0 R", "/Root 4 0 R"), 3);
    EXPECT_EQ(replaced("/Root 1 0 R", "/Root << /Pages 2 0 R >>"), 3);
    EXPECT_EQ(replaced("%PDF-1.7", ""), 3);
    EXPECT_EQ(readablePages(QByteArray(5000, 'x') + whole), 3);
    EXPECT_EQ(readablePages(QByteArray(whole).replace("\n", "\r\n")), 3);
}

TEST(FileRepairTest, TakesTheLastOfObjectsWithOneNumber) {
    const QByteArray first = upTo(pages(1).bytes(), "xref\n0 1").replace("0 0 50 50 re", "9 9 99 99 re");
    EXPECT_EQ(readablePages(first + "3 0 obj\nnull\nendobj\n" + upTo(pages(1).bytes(), "xref\n0 1")), 1);
}

TEST(FileRepairTest, DoesNotTakeStreamDataForObjects) {
    PdfBuilder builder = pages(1);
    builder.stream("", "3 0 obj\n(no page)\n");
    EXPECT_EQ(readablePages(upTo(builder.bytes(), "xref\n0 1")), 1);
    builder.stream("/Note (a stream of words)", "3 0 obj\n(no page)\n");
    EXPECT_EQ(readablePages(upTo(builder.bytes(), "xref\n0 1")), 1);
}

TEST(FileRepairTest, PassesOverMembersWithImpossibleNumbers) {
    PdfBuilder builder = pages(1);
    builder.stream("/Type /ObjStm /N 1 /First 13", "2147483647 0 null");
    QByteArray bytes = upTo(builder.bytes(), "xref\n0 1");
    bytes.replace("/Catalog", "/Unknown");
    EXPECT_EQ(readablePages(bytes), 1);
}

TEST(FileRepairTest, ReadsObjectStreamsWithoutTheirTable) {
    QByteArray bytes = upTo(rewritten(pages(3).bytes()), "startxref");
    EXPECT_EQ(readablePages(bytes), 3);
    EXPECT_EQ(readablePages(bytes.replace("/XRef", "/Lost")), 3);
}

TEST(FileRepairTest, BringsBackPagesThatTheTableLacks) {
    QByteArray bytes = pages(3).bytes();
    constexpr int ofFifth = 4 * 20;
    const auto entry = bytes.indexOf("\n1 8\n", bytes.indexOf("xref\n0 1")) + 5 + ofFifth;
    bytes.replace(entry, 18, "0000000000 65535 f");
    EXPECT_EQ(readablePages(bytes), 3);
    EXPECT_EQ(readablePages(bytes.replace("/Count 3", "/Count 2")), 2) << "that one was deleted";
}

TEST(FileRepairTest, ReadsEncryptedFilesWithoutAPassword) {
    for (const WriterSettings& encryption : encryptions("")) {
        const QByteArray bytes = rewritten(pages(2).bytes(), encryption);
        EXPECT_EQ(readablePages(bytes), 2);
        EXPECT_EQ(readablePages(upTo(bytes, "startxref")), 2);
    }
}

TEST(FileRepairTest, RefusesFilesThatNeedAPassword) {
    for (const WriterSettings& encryption : encryptions("geheim")) {
        const QByteArray bytes = rewritten(pages(2).bytes(), encryption);
        EXPECT_EQ(readablePages(bytes), -1);
        EXPECT_EQ(readablePages(upTo(bytes, "startxref")), -1);
    }
}

TEST(FileRepairTest, NeedsNoPasswordWhereOnlyAttachmentsAreEncrypted) {
    const auto pageCount = [](const std::string& filters) {
        const std::string key(64, 'a');
        QByteArray bytes =
            pages(1)
                .object("<< /Filter /Standard /V 4 /R 4 /Length 128 /P -1 /O <" + key + "> /U <" + key +
                        "> /CF << /StdCF << /CFM /AESV2 /Length 16 >> >> /EFF /StdCF " + filters + " >>")
                .bytes();
        return readablePages(bytes.replace("/Root 1 0 R", "/Root 1 0 R /Encrypt 1000 0 R /ID [<00> <00>]"));
    };
    EXPECT_EQ(pageCount("/StmF /Identity /StrF /Identity"), 1);
    EXPECT_EQ(pageCount(""), 1);
    EXPECT_EQ(pageCount("/StmF /StdCF /StrF /Identity"), -1);
    EXPECT_EQ(pageCount("/StmF /Identity /StrF /StdCF"), -1);
}

TEST(FileRepairTest, SurvivesDeepFiles) {
    constexpr int depth = 60000;
    const auto nested = [](const std::string& open, const std::string& close) {
        std::string text;
        for (int i = 0; i < depth; ++i)
            text += open;
        for (int i = 0; i < depth; ++i)
            text += close;
        return text;
    };
    PdfBuilder builder;
    builder.page("/Resources << /Font 1000 0 R /Pattern 1001 0 R /XObject << /X 1002 0 R >> >>", mark);
    builder.object(nested("[", "]")).object(nested("<</A", ">>"));
    for (int i = 3; i < depth; ++i)
        builder.stream("/A " + std::to_string(PdfBuilder::firstExtraObject + i) + " 0 R", "");
    EXPECT_EQ(readablePages(builder.bytes()), 1);
}

TEST(FileRepairTest, SaysWhatIsDamaged) {
    const auto damage = [](const QByteArray& bytes) { return documentOf(bytes)->damage(); };
    const QByteArray whole = pages(3).bytes();
    EXPECT_TRUE(damage(whole).isNone());
    EXPECT_EQ(damage(QByteArray(whole).replace("startxref\n", "startxref\n9")),
              (DocumentDamage{true, false, {}, 0}));
    EXPECT_EQ(damage(upTo(whole, "xref\n0 1")), (DocumentDamage{true, true, {}, 0}));
    EXPECT_EQ(damage(upTo(whole, "7 0 obj")), (DocumentDamage{true, true, {2}, 0}))
        << "the third page is lost";
    EXPECT_EQ(damage(upTo(whole, "8 0 obj")), (DocumentDamage{true, true, {2}, 0})) << "its content is";
    const QByteArray inParts =
        pages(1).page("/Contents [1000 0 R 1001 0 R]").stream("", "q").stream("", "Q").bytes();
    EXPECT_EQ(damage(upTo(inParts, "1001 0 obj")), (DocumentDamage{true, true, {1}, 0})) << "a part of it is";
    EXPECT_EQ(damage(QByteArray(whole).replace("/Count 3", "/Count 5")).uncountedPages, 2);
    EXPECT_EQ(damage(QByteArray(whole).replace("/Count 3", "/Count 5000")).uncountedPages, 0)
        << "more than the file has objects";
}

TEST(FileRepairTest, RefusesWhatHasNoPage) {
    EXPECT_EQ(readablePages("1 0 obj\n<< /Length 9 >> stream\n"), -1);
    EXPECT_EQ(readablePages("trailer << /Root 1 0 R >> 1 0 obj 1 0 R endobj"), -1);
    EXPECT_EQ(readablePages("99999999999 0 obj obj obj 0 0 obj stream endobj"), -1);
}
