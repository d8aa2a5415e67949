#include "base/Files.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestImages.h"
#include "ui/KeptThumbnails.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace vellmora::test {

constexpr QSize shownSize(20, 20);

/// What a start of the program has of it.
struct Start {
    explicit Start(const QString& file) : kept(thumbnails, file) {}

    /// The picture, once it is there.
    QImage picture(const DeferredPicture& source) {
        EXPECT_TRUE(QTest::qWaitFor([&] { return state(source) == Thumbnails::State::ready; }));
        return thumbnails.thumbnail(source, shownSize).picture.toImage();
    }
    Thumbnails::State state(const DeferredPicture& source) {
        return thumbnails.thumbnail(source, shownSize).state;
    }

    Thumbnails thumbnails{nullptr};
    KeptThumbnails kept;
};

class KeptThumbnailsTest : public testing::Test {
protected:
    DeferredPicture source(const QString& version, QColor color) {
        return {version, [this, color]() -> std::optional<Image> {
                    ++decodes;
                    return Image(plainImage(40, 20, color));
                }};
    }
    /// After a start that has shown and kept both pictures.
    void keepBoth() {
        Start start(file);
        for (const DeferredPicture& each : {opaque, clear})
            shown.insert(each.version, start.picture(each));
        start.kept.keep();
    }

    QTemporaryDir folder;
    QString file = folder.filePath(QStringLiteral("cache/thumbnails"));
    std::atomic<int> decodes = 0;
    DeferredPicture opaque = source(QStringLiteral("opaque"), Qt::red);
    DeferredPicture clear = source(QStringLiteral("clear"), QColor(0, 0, 255, 60));
    QHash<QString, QImage> shown;
};

TEST_F(KeptThumbnailsTest, ThePicturesOfTheLastStartAreThereAtOnceAndTheSame) {
    keepBoth();
    ASSERT_EQ(decodes, 2);
    Start next(file);
    for (const DeferredPicture& each : {opaque, clear}) {
        ASSERT_EQ(next.state(each), Thumbnails::State::ready);
        EXPECT_EQ(next.picture(each), shown.value(each.version));
    }
    EXPECT_EQ(decodes, 2);
    EXPECT_EQ(next.state(source(QStringLiteral("changed"), Qt::red)), Thumbnails::State::loading);
    EXPECT_EQ(next.thumbnails.thumbnail(opaque, {30, 30}).state, Thumbnails::State::loading);
}

TEST_F(KeptThumbnailsTest, TheFileIsWrittenAnewWhereOtherPicturesAreShownAndHoldsNoOthers) {
    keepBoth();
    ASSERT_TRUE(QFile::setPermissions(file, QFile::ReadOwner));
    const auto isSameFile = [this] { return !(QFile::permissions(file) & QFile::WriteOwner); };
    {
        Start same(file);
        same.picture(opaque);
        same.thumbnails.prepare(clear, shownSize);
        same.kept.keep();
    }
    EXPECT_TRUE(isSameFile());
    const DeferredPicture another = source(QStringLiteral("another"), Qt::green);
    {
        Start next(file);
        next.picture(opaque);
        next.picture(another);
        next.kept.keep();
        EXPECT_EQ(next.state(clear), Thumbnails::State::loading) << "it was not asked for in time";
    }
    EXPECT_FALSE(isSameFile());
    Start last(file);
    EXPECT_EQ(last.state(opaque), Thumbnails::State::ready);
    EXPECT_EQ(last.state(another), Thumbnails::State::ready);
    EXPECT_EQ(last.state(clear), Thumbnails::State::loading);
}

TEST_F(KeptThumbnailsTest, APictureThatIsNotToBeSeenAnyMoreIsNotKept) {
    keepBoth();
    { Start(file).kept.forget(); }
    EXPECT_FALSE(files::exists(file));
    EXPECT_EQ(Start(file).state(opaque), Thumbnails::State::loading);
}

TEST_F(KeptThumbnailsTest, WhateverElseTheFileHoldsIsPassedOverAndReplaced) {
    keepBoth();
    const QByteArray good = files::read(file);
    QList<QByteArray> others{QByteArray(), QByteArray(1 << 16, '\xff'), good + "x",
                             QByteArray(good).replace("thumbnails 1", "thumbnails 0")};
    for (qsizetype length = 1; length < good.size(); length += 7)
        others.append(good.first(length));
    // Each number in turn: lengths, sides, formats.
    for (qsizetype at = 0; at + 4 <= good.size() && at < 400; ++at)
        others.append(QByteArray(good).replace(at, 4, "\x7f\xff\xff\xf0"));
    for (const QByteArray& other : others) {
        files::writeAtomically(file, other);
        Start start(file);
        for (const DeferredPicture& each : {opaque, clear}) {
            const Thumbnails::Thumbnail found = start.thumbnails.thumbnail(each, shownSize);
            if (found.state == Thumbnails::State::ready) {
                EXPECT_EQ(found.picture.size(), QSize(20, 10));
            }
        }
    }
    files::remove(file);
    files::createDirectory(file);
    keepBoth();
    Start next(file);
    for (const DeferredPicture& each : {opaque, clear})
        EXPECT_EQ(next.state(each), Thumbnails::State::ready);
}

TEST_F(KeptThumbnailsTest, WithoutAPlaceForTheFileThePicturesAreDecoded) {
    for (const QString& place : {QString(), QStringLiteral("/proc/none/thumbnails")}) {
        Start start(place);
        EXPECT_FALSE(start.picture(opaque).isNull());
        start.kept.keep();
        start.kept.forget();
    }
    EXPECT_EQ(decodes, 2);
}

}  // namespace vellmora::test
