#include "base/Error.h"
#include "base/FileSnapshot.h"
#include "base/SnapshotReader.h"
#include "base/WorkProgress.h"
#include "pdf/PDFContext.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestDocuments.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"

#include <atomic>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

#include <QFile>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

constexpr qint64 megabyte = 1 << 20;
/// So large that it is not read before the test has gone on.
constexpr qint64 hugeSize = 2048 * megabyte;

class FileSnapshotTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("datei.pdf"));
};

FileDescriptor duplicate(int descriptor) {
    return FileDescriptor(descriptor < 0 ? -1 : ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0));
}

/// What another process sees.
QByteArray contentOf(const FileSnapshot& content) {
    QByteArray bytes(static_cast<qsizetype>(content.size()), Qt::Uninitialized);
    content.read(0, bytes.data(), content.size());
    return bytes;
}

SnapshotReader readerOf(const FileSnapshot& content) {
    return {duplicate(content.memory()), duplicate(content.file()), content.size()};
}

/// A page, and after it streams of these lengths, one of which is its content. They are holes, which take no
/// room on the disk.
void writePdf(const QString& path, const std::vector<qint64>& streams, size_t content) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    QByteArray places;
    const auto add = [&](const QByteArray& object) {
        places += QByteArray::number(file.pos()).rightJustified(10, '0') + " 00000 n \n";
        file.write(object);
    };
    constexpr size_t firstStream = 4;
    file.write("%PDF-1.7\n");
    add("1 0 obj <</Type/Catalog/Pages 2 0 R>> endobj\n");
    add("2 0 obj <</Type/Pages/Kids[3 0 R]/Count 1>> endobj\n");
    add("3 0 obj <</Type/Page/MediaBox[0 0 9 9]/Contents " + QByteArray::number(firstStream + content) +
        " 0 R>> endobj\n");
    for (size_t i = 0; i < streams.size(); ++i) {
        add(QByteArray::number(firstStream + i) + " 0 obj <</Filter/FlateDecode/Length " +
            QByteArray::number(streams[i]) + ">> stream\n");
        file.seek(file.pos() + streams[i]);
        file.write("\nendstream endobj\n");
    }
    const QByteArray start = QByteArray::number(file.pos());
    const QByteArray size = QByteArray::number(firstStream + streams.size());
    file.write("xref\n0 " + size + "\n0000000000 65535 f \n" + places + "trailer <</Root 1 0 R/Size " + size +
               ">>\nstartxref\n" + start + "\n%%EOF\n");
}

}  // namespace

TEST_F(FileSnapshotTest, ManyReadersGetTheSameBytesInAnyOrder) {
    QByteArray bytes(40 * megabyte + 17, Qt::Uninitialized);
    for (qsizetype i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 / 7);
    writeFile(path, bytes);
    const auto content = FileSnapshot::open(path);
    ASSERT_EQ(content->size(), static_cast<size_t>(bytes.size()));
    std::atomic<int> wrong = 0;
    std::vector<std::jthread> threads;
    for (const size_t step : {size_t{1} << 20, size_t{777777}, size_t{3} << 20}) {
        threads.emplace_back([&, step] {
            SnapshotReader reader = readerOf(*content);
            reader.setUncopied(step == 777777 ? UncopiedRange::isShown : UncopiedRange::isRead);
            for (size_t end = content->size(); end > step; end -= step) {
                const std::string_view part = reader.range(end - step, step);
                wrong += std::string_view(bytes.constData() + (end - step), step) == part ? 0 : 1;
            }
            content->requireWhole();
            wrong += reader.agreesWithSnapshot() ? 0 : 1;
        });
    }
    content->copyAll(WorkProgress());
    threads.clear();
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(contentOf(*content) == bytes);
    EXPECT_TRUE(readerOf(*content).all() == std::string_view(bytes.constData(), content->size()));
    content->requireReadable();
}

/// In bytes.
qint64 ownMemory() {
    const QByteArray figures = readFile(QStringLiteral("/proc/self/smaps_rollup"));
    const qsizetype start = figures.indexOf("Anonymous:") + 10;
    return figures.sliced(start, figures.indexOf("kB", start) - start).trimmed().toLongLong() << 10;
}

/// What the system keeps of the snapshot, in bytes.
qint64 memoryOf(const FileSnapshot& content) {
    struct stat state {};
    ::fstat(content.memory(), &state);
    return qint64{state.st_blocks} * 512;
}

TEST_F(FileSnapshotTest, WhatAReaderReadItselfTakesNoMemoryOnceItIsInTheSnapshot) {
    const QByteArray bytes(64 * megabyte, 'x');
    writeFile(path, bytes);
    const auto content = FileSnapshot::open(path);
    SnapshotReader reader = readerOf(*content);
    const std::string_view all = reader.all();
    EXPECT_LT(memoryOf(*content), megabyte) << "nothing is copied yet";
    content->requireWhole();
    const qint64 before = ownMemory();
    ASSERT_TRUE(reader.agreesWithSnapshot());
    EXPECT_LT(ownMemory(), before - 48 * megabyte);
    EXPECT_TRUE(all == std::string_view(bytes.constData(), all.size()));
}

TEST_F(FileSnapshotTest, WhatAReaderWasShownStaysWhenTheFileIsGone) {
    const QByteArray bytes(20 * megabyte, 'x');
    writeFile(path, bytes);
    const auto content = FileSnapshot::open(path);
    SnapshotReader reader = readerOf(*content);
    reader.setUncopied(UncopiedRange::isShown);
    const qint64 before = ownMemory();
    const std::string_view all = reader.all();
    EXPECT_LT(ownMemory(), before + megabyte);
    content->requireWhole();
    ASSERT_TRUE(reader.agreesWithSnapshot());
    QFile::resize(path, 0);
    EXPECT_TRUE(all == std::string_view(bytes.constData(), all.size()));
    EXPECT_TRUE(reader.all() == all);
}

TEST_F(FileSnapshotTest, AReaderTellsThatItIsAtWorkForEachReadOfTheFile) {
    writeFile(path, QByteArray(20 * megabyte, 'x'));
    const auto content = FileSnapshot::open(path);
    SnapshotReader reader = readerOf(*content);
    int reports = 0;
    reader.whenRead([&] { ++reports; });
    for (size_t i = 0; i < 8; ++i)
        reader.range(i * megabyte, 1);
    EXPECT_EQ(reports, 8);
}

TEST_F(FileSnapshotTest, WhatAReaderCouldNotReadIsNeverTakenForEmpty) {
    const QByteArray bytes(20 * megabyte, 'x');
    writeFile(path, bytes);
    const auto content = FileSnapshot::open(path);
    const QString shortened = folder.filePath(QStringLiteral("kurz.pdf"));
    writeFile(shortened, bytes.first(megabyte));
    const FileDescriptor cut(::open(QFile::encodeName(shortened).constData(), O_RDONLY | O_CLOEXEC));
    SnapshotReader reader(duplicate(content->memory()), duplicate(cut.get()), content->size());
    EXPECT_EQ(reader.range(0, 1), "x");
    EXPECT_THROW(reader.range(megabyte - 5, 10), Error);
    EXPECT_THROW(reader.range(2 * megabyte, 10), Error);
    content->requireWhole();
    EXPECT_EQ(reader.range(megabyte - 5, 10), "xxxxxxxxxx");
    EXPECT_EQ(reader.range(2 * megabyte, 10), "xxxxxxxxxx");
    EXPECT_THROW(reader.requireReadable(), Error) << "who asked before may have gone on without it";
}

TEST_F(FileSnapshotTest, OthersCanNeitherWriteToItNorCutItShort) {
    const FileSnapshot content(QByteArray("stays"));
    const FileDescriptor memory = duplicate(content.memory());
    EXPECT_NE(::ftruncate(memory.get(), 0), 0);
    EXPECT_LT(::pwrite(memory.get(), "gone!", 5, snapshotContentOffset), 0);
    EXPECT_EQ(::mmap(nullptr, 4096, PROT_READ | PROT_WRITE, MAP_SHARED, memory.get(), 0), MAP_FAILED);
    EXPECT_TRUE(readerOf(content).all() == "stays");
    EXPECT_EQ(readerOf(FileSnapshot(QByteArray())).size(), 0U);
}

TEST_F(FileSnapshotTest, TheFileIsNotNeededAnyMoreOnceItIsRead) {
    for (const qint64 megabytes : {1, 8, 20}) {
        const QByteArray bytes(megabytes * megabyte, 'x');
        writeFile(path, bytes);
        const auto content = FileSnapshot::open(path);
        content->requireWhole();
        QFile::resize(path, 0);
        EXPECT_TRUE(contentOf(*content) == bytes);
    }
}

TEST_F(FileSnapshotTest, ALargeOneIsLookedAtWhereItLies) {
    QByteArray bytes(20 * megabyte, 'x');
    bytes[bytes.size() - 1] = 'z';
    writeFile(path, bytes);
    const auto content = FileSnapshot::open(path);
    EXPECT_TRUE(content->view(0, 1).empty());
    WorkProgress cancelled;
    cancelled.cancel();
    content->copyAll(cancelled);
    EXPECT_TRUE(content->view(0, 1).empty());
    content->copyAll(WorkProgress());
    const size_t size = content->size();
    EXPECT_TRUE(content->view(0, size) == std::string_view(bytes.constData(), size));
    EXPECT_EQ(content->view(size - 1, 1), "z");
    EXPECT_TRUE(content->view(size - 1, 2).empty());
    EXPECT_TRUE(content->view(size + 1, 1).empty());
    EXPECT_TRUE(content->view(1, size).empty());
}

TEST_F(FileSnapshotTest, AChangeWhileItIsReadIsNoticed) {
    const QByteArray bytes(20 * megabyte, 'x');
    const auto isWholeAfter = [&](const auto& whatOthersDo) {
        QFile::remove(path);
        writeFile(path, bytes);
        const auto content = FileSnapshot::open(path);
        SnapshotReader reader = readerOf(*content);
        SnapshotReader shownReader = readerOf(*content);
        shownReader.setUncopied(UncopiedRange::isShown);
        reader.range(0, 100);
        shownReader.range(0, 100);
        whatOthersDo();
        try {
            content->requireWhole();
            const bool isWhole = reader.agreesWithSnapshot();
            EXPECT_EQ(shownReader.agreesWithSnapshot(), isWhole);
            return isWhole;
        } catch (const Error& error) {
            EXPECT_TRUE(error.reason().startsWith(QStringLiteral("Die Datei wurde geändert, während ")));
            return false;
        }
    };
    const auto overwrite = [&](qint64 place, const QByteArray& with) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadWrite) && file.seek(place));
        file.write(with);
    };
    EXPECT_FALSE(isWholeAfter([&] { overwrite(0, "y"); })) << "of the same size, where it was read before";
    EXPECT_TRUE(isWholeAfter([&] { overwrite(bytes.size() - 1, "y"); })) << "all of it is the new version";
    EXPECT_FALSE(isWholeAfter([&] { overwrite(bytes.size(), "y"); }));
    EXPECT_FALSE(isWholeAfter([&] { QFile::resize(path, megabyte); }));
    EXPECT_TRUE(isWholeAfter([&] { overwrite(0, "x"); })) << "it holds the same";
    EXPECT_TRUE(isWholeAfter([&] { QFile::setPermissions(path, QFileDevice::ReadOwner); }));
    EXPECT_TRUE(isWholeAfter([&] { QFile::remove(path); }));
}

TEST_F(FileSnapshotTest, WhatWasCutOffBeforeItWasReadIsAnErrorAndNeverSaved) {
    const auto expectNoSave = [&](const std::vector<qint64>& streams, size_t content) {
        writePdf(path, streams, content);
        const auto document = openDocument(QUrl::fromLocalFile(path));
        ASSERT_TRUE(document);
        QFile::resize(path, megabyte);
        MemoryConsumer consumer;
        const auto context = PDFContext::create(consumer, *document);
        context->beginPage();
        context->drawPage(0, DisplayBox::mediaBox);
        context->endPage();
        EXPECT_THROW(context->close(), Error);
    };
    expectNoSave({hugeSize}, 0);
    expectNoSave({hugeSize, 100, megabyte},
                 1);  // what was the content looks like an object that is not there
}
