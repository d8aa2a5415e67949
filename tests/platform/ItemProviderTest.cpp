#include "platform/drop/ItemProvider.h"
#include "tests/support/GTestQt.h"

#include <QCoreApplication>
#include <QMimeData>

using namespace vellmora;

TEST(ItemProviderTest, DeliversTheFilesURLOnALaterTurn) {
    QMimeData drop;
    drop.setUrls({QUrl(QStringLiteral("https://example.org/a.pdf")),
                  QUrl::fromLocalFile(QStringLiteral("/tmp/ä b.pdf"))});
    const ItemProviders providers = itemProviders(drop);
    ASSERT_EQ(providers.size(), 2);
    EXPECT_FALSE(providers[0]->hasItemConforming(fileURLTypeIdentifier));
    ASSERT_TRUE(providers[1]->hasItemConforming(fileURLTypeIdentifier));

    std::optional<QUrl> delivered;
    providers[1]->loadDataRepresentation(fileURLTypeIdentifier, [&](const auto& data, const auto&) {
        delivered = fileURLFromDataRepresentation(*data);
    });
    EXPECT_FALSE(delivered);
    QCoreApplication::processEvents();
    EXPECT_EQ(delivered, QUrl::fromLocalFile(QStringLiteral("/tmp/ä b.pdf")));
}

TEST(ItemProviderTest, ATextIsAnItemButNoFile) {
    QMimeData drop;
    drop.setText(QStringLiteral("/tmp/a.pdf"));
    ASSERT_EQ(itemProviders(drop).size(), 1);
    EXPECT_FALSE(itemProviders(drop).first()->hasItemConforming(fileURLTypeIdentifier));
    EXPECT_FALSE(hasFileURL(drop));
}

TEST(ItemProviderTest, OnlyFileURLsAreBuiltFromData) {
    EXPECT_TRUE(fileURLFromDataRepresentation("file:///tmp/a%20b.pdf"));
    EXPECT_FALSE(fileURLFromDataRepresentation("https://example.org/a.pdf"));
    EXPECT_FALSE(fileURLFromDataRepresentation("file://"));
    EXPECT_FALSE(fileURLFromDataRepresentation(""));
}
