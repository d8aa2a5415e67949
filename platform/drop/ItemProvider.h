#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

class QMimeData;

namespace vellmora {

/// Type identifier of file URLs.
inline const QString fileURLTypeIdentifier = QStringLiteral("public.file-url");

/// What could not be delivered, in German; empty where the source gave no reason.
struct ItemLoadError {
    QString localizedDescription;
};

/// One dropped item, whose data is delivered later.
class ItemProvider {
public:
    /// Called once, from any thread, with the data or without; the error may be absent in both cases.
    using Completion = std::function<void(std::optional<QByteArray>, std::optional<ItemLoadError>)>;

    virtual ~ItemProvider() = default;
    virtual bool hasItemConforming(const QString& typeIdentifier) const = 0;
    /// Returns at once; `completion` runs on a later turn of some thread's event loop.
    virtual void loadDataRepresentation(const QString& typeIdentifier, Completion completion) = 0;
};

using ItemProviders = QList<std::shared_ptr<ItemProvider>>;

/// One provider for each item of a drop, in the order given; at least one where the drop holds anything. The
/// data is copied: `mimeData` need not outlive the call.
ItemProviders itemProviders(const QMimeData& mimeData);

/// The file URL that the data representation of a file-URL item stands for.
std::optional<QUrl> fileURLFromDataRepresentation(const QByteArray& data);

/// True where the drop holds the URL of a file on this machine.
bool hasFileURL(const QMimeData& mimeData);

}  // namespace vellmora
