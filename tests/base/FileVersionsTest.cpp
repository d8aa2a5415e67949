#include "base/ContentDigest.h"
#include "base/Error.h"
#include "base/FileState.h"
#include "base/FileVersions.h"
#include "base/WorkProgress.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <array>
#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>
#include <thread>

#include <QFile>
#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

using Held = FileVersions::Held;

QByteArray bytesFrom(int seed, qsizetype size) {
    QByteArray bytes(size, Qt::Uninitialized);
    for (qsizetype i = 0; i < size; ++i)
        bytes[i] = static_cast<char>((i + seed) * 31 / 7);
    return bytes;
}

ContentDigest digestOf(const QByteArray& bytes, size_t piece) {
    ContentDigest digest;
    const std::string_view all(bytes.constData(), static_cast<size_t>(bytes.size()));
    for (size_t at = 0; at < all.size(); at += piece)
        digest.add(all.substr(at, piece));
    return digest;
}

WrittenContent writtenFrom(const QByteArray& bytes) {
    WrittenContent content;
    content.add({bytes.constData(), static_cast<size_t>(bytes.size())});
    return content;
}

/// As a program may do that knows better: the file looks as if it had not been touched.
void overwriteUnseen(const QString& path, const QByteArray& bytes) {
    struct stat before {};
    ASSERT_EQ(::stat(qPrintable(path), &before), 0);
    writeFile(path, bytes);
    const std::array<timespec, 2> times{before.st_atim, before.st_mtim};
    ASSERT_EQ(::utimensat(AT_FDCWD, qPrintable(path), times.data(), 0), 0);
}

class FileVersionsTest : public testing::Test {
protected:
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("Vertrag.pdf"));
};

}  // namespace

TEST(ContentDigestTest, DependsOnEveryByteAndNotOnThePieces) {
    const QByteArray bytes = bytesFrom(1, 100000);
    const ContentDigest digest = digestOf(bytes, 100000);
    for (const size_t piece : {1U, 7U, 4096U, 16384U, 16385U, 70000U})
        EXPECT_TRUE(digestOf(bytes, piece) == digest) << piece;
    for (const qsizetype place : {0, 16383, 16384, 98303, 98304, 99999}) {
        QByteArray other = bytes;
        other[place] = static_cast<char>(other[place] ^ 1);
        EXPECT_FALSE(digestOf(other, 4096) == digest) << place;
    }
    EXPECT_FALSE(digestOf(bytes.chopped(1), 4096) == digest);
    EXPECT_FALSE(digestOf(bytes + '\0', 4096) == digest);
}

TEST_F(FileVersionsTest, TellsByContentWhoseAFileIs) {
    const QByteArray opened = bytesFrom(1, 700000);
    writeFile(path, opened);
    FileVersions versions(FileSnapshot::open(path));
    EXPECT_EQ(versions.heldBy(path), Held::opened);
    QFile::remove(path);
    EXPECT_EQ(versions.heldBy(path), Held::nothing);
    writeFile(path, opened);
    EXPECT_EQ(versions.heldBy(path), Held::opened) << "another file of the same content";

    QByteArray other = opened;
    other[699999] = static_cast<char>(other[699999] ^ 1);
    overwriteUnseen(path, other);
    EXPECT_EQ(versions.heldBy(path), Held::foreign);
    for (const QByteArray& bytes : {opened.chopped(1), opened + "x", QByteArray()}) {
        writeFile(path, bytes);
        EXPECT_EQ(versions.heldBy(path), Held::foreign) << bytes.size();
    }
    EXPECT_EQ(FileVersions().heldBy(path), Held::foreign);
}

/// What this process has read from files so far, in bytes.
qint64 readSoFar() {
    const QByteArray figures = readFile(QStringLiteral("/proc/self/io"));
    return figures.sliced(figures.indexOf("rchar: ") + 7).split('\n').constFirst().toLongLong();
}

TEST_F(FileVersionsTest, ALargeFileThatNobodyTouchedIsNotReadOnceMore) {
    const QByteArray opened = bytesFrom(4, 20 << 20);
    writeFile(path, opened);
    // Changes that follow upon one another look alike, so a new file is compared by content.
    while (FileState::of(path)->isRecent)
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const auto content = FileSnapshot::open(path);
    content->requireWhole();
    const FileVersions versions(content);
    const qint64 before = readSoFar();
    EXPECT_EQ(versions.heldBy(path), Held::opened);
    EXPECT_LT(readSoFar() - before, opened.size() / 8);

    QByteArray other = opened;
    other[opened.size() / 2] = static_cast<char>(other[opened.size() / 2] ^ 1);
    overwriteUnseen(path, other);
    EXPECT_EQ(versions.heldBy(path), Held::foreign);
    overwriteUnseen(path, opened);
    EXPECT_EQ(versions.heldBy(path), Held::opened);
}

TEST_F(FileVersionsTest, KnowsWhatWasWrittenAndWhatMayHaveBeen) {
    const QByteArray first = bytesFrom(2, 300000);
    const QByteArray second = bytesFrom(3, 300000);
    FileVersions versions;
    const auto whose = [&](const QByteArray& bytes) {
        writeFile(path, bytes);
        return versions.heldBy(path);
    };
    versions.expect(writtenFrom(first));
    EXPECT_EQ(whose(first), Held::written) << "its name may be on the disk already";
    versions.confirm();
    EXPECT_EQ(whose(first), Held::written);
    EXPECT_EQ(whose(second), Held::foreign);
    versions.expect(writtenFrom(second));
    EXPECT_EQ(whose(first), Held::written);
    EXPECT_EQ(whose(second), Held::written);
    versions.confirm();
    EXPECT_EQ(whose(first), Held::foreign) << "somebody brought an earlier version back";
}

TEST_F(FileVersionsTest, KnowsEachByteThatWasWrittenFromTheFileThatIsOpen) {
    const QByteArray opened = bytesFrom(5, 20 << 20);
    writeFile(path, opened);
    const auto source = FileSnapshot::open(path);
    source->copyAll(WorkProgress());
    ASSERT_FALSE(source->view(0, source->size()).empty());
    WrittenContent content(source);
    QByteArray written;
    const auto add = [&](std::string_view bytes) {
        content.add(bytes);
        written.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    };
    add("%PDF-1.7 ");
    add("beginning ");
    // Long pieces, of which some follow one another in the source, and short ones.
    add(source->view(0, 300000));
    add(source->view(300000, 300000));
    add(source->view(600000, 10));
    add(source->view(5000000, 100000));
    add(source->view(4000000, 100000));
    add(source->view(4100001, 20));
    add(" end");
    add(source->view(4000000, 0));
    FileVersions versions(source);
    versions.expect(std::move(content));
    const auto whose = [&](const QByteArray& bytes) {
        writeFile(path, bytes);
        return versions.heldBy(path);
    };
    EXPECT_EQ(whose(written), Held::written);
    for (const qsizetype place : {0, 12, 19, 300018, 600027, 600029, 700028, 800030, 800040, 800052}) {
        QByteArray other = written;
        other[place] = static_cast<char>(other[place] ^ 1);
        EXPECT_EQ(whose(other), Held::foreign) << place;
    }
    for (const QByteArray& bytes : {written.chopped(1), written + "x", QByteArray()})
        EXPECT_EQ(whose(bytes), Held::foreign) << bytes.size();
    EXPECT_EQ(whose(written), Held::written);
}

TEST_F(FileVersionsTest, WhatCannotBeReadIsNobodysWordForIt) {
    EXPECT_THROW(FileVersions().heldBy(folder.path()), Error);
}
