#include "platform/drop/ItemProvider.h"

#include <algorithm>
#include <utility>

#include <QCoreApplication>
#include <QMimeData>

namespace vellmora {

namespace {

/// An item of the toolkit's drag-and-drop data: a URL, or something that has none.
class MimeItemProvider : public ItemProvider {
public:
    explicit MimeItemProvider(QUrl url) : m_url(std::move(url)) {}

    bool hasItemConforming(const QString& typeIdentifier) const override {
        return typeIdentifier == fileURLTypeIdentifier && m_url.isLocalFile();
    }

    void loadDataRepresentation(const QString& typeIdentifier, Completion completion) override {
        std::optional<QByteArray> data;
        if (hasItemConforming(typeIdentifier))
            data = m_url.toEncoded();
        QMetaObject::invokeMethod(
            QCoreApplication::instance(),
            [data = std::move(data), completion = std::move(completion)] { completion(data, std::nullopt); },
            Qt::QueuedConnection);
    }

private:
    QUrl m_url;
};

}  // namespace

ItemProviders itemProviders(const QMimeData& mimeData) {
    ItemProviders providers;
    for (const QUrl& url : mimeData.urls())
        providers.append(std::make_shared<MimeItemProvider>(url));
    if (providers.isEmpty() && !mimeData.formats().isEmpty())
        providers.append(std::make_shared<MimeItemProvider>(QUrl()));
    return providers;
}

std::optional<QUrl> fileURLFromDataRepresentation(const QByteArray& data) {
    const QUrl url = QUrl::fromEncoded(data, QUrl::StrictMode);
    if (!url.isValid() || !url.isLocalFile() || url.toLocalFile().isEmpty())
        return std::nullopt;
    return url;
}

bool hasFileURL(const QMimeData& mimeData) {
    const QList<QUrl> urls = mimeData.urls();
    return std::any_of(urls.begin(), urls.end(), [](const QUrl& url) { return url.isLocalFile(); });
}

}  // namespace vellmora
