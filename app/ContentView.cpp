#include "app/ContentView.h"

#include "app/StampPlacement.h"
#include "app/WorkScope.h"
#include "base/Error.h"
#include "export/PDFExporter.h"
#include "pdf/DamageText.h"

#include <algorithm>
#include <utility>

#include <QFileInfo>
#include <QScopeGuard>

namespace vellmora {

ContentView::ContentView(std::unique_ptr<StampLibrary> library, FilePanels& panels,
                         DocumentProcesses& processes)
    : m_stampLibrary(std::move(library)),
      m_panels(panels),
      m_processes(processes),
      m_stampsObserver(stampsByPage.addNotifier([this] { ++m_stampsRevision; })),
      m_dropObserver(isPDFDropTargeted.addNotifier([this] {
          if (isPDFDropTargeted)
              Q_EMIT documentExpected();
      })) {}

ContentView::~ContentView() = default;

QString ContentView::actionLabel(SaveMode mode) {
    switch (mode) {
        case SaveMode::overwriteOriginal:
            return QStringLiteral("Speichern");
        case SaveMode::saveAs:
            return QStringLiteral("Speichern unter…");
    }
    return {};
}

QString ContentView::pageDisplayText() const {
    const auto document = pdfDocument.value();
    if (!document)
        return QStringLiteral("–");
    return QStringLiteral("%1 / %2").arg(currentPageIndex.value() + 1).arg(document->pageCount());
}

void ContentView::report(const QString& text, Outcome outcome) {
    isStatusProblem = outcome == Outcome::problem;
    statusText = text;
    Q_EMIT didReport();
}

void ContentView::reportWithRemark(const QString& message, const QString& remark) {
    if (remark.isEmpty())
        report(message, Outcome::success);
    else
        report(message + QStringLiteral(" – ") + remark, Outcome::problem);
}

qsizetype ContentView::totalStampCount() const {
    qsizetype count = 0;
    for (const QList<StampItem>& stamps : stampsByPage.value())
        count += stamps.size();
    return count;
}

/// Of the exception that is being handled.
static QString notLoaded() {
    return QStringLiteral("PDF konnte nicht geladen werden. ") + Error::current().reason();
}

/// A document without stamps that was saved without any has nothing to save, whatever was on it in between.
bool ContentView::hasUnsavedStamps() const {
    return m_stampsRevision != m_saved.revision && (m_saved.count > 0 || totalStampCount() > 0);
}

std::optional<qsizetype> ContentView::pageOfSelectedStamp() const {
    const std::optional<QUuid> selected = selectedStampID;
    const StampsByPage& stamps = stampsByPage.value();
    for (auto page = stamps.cbegin(); selected && page != stamps.cend(); ++page) {
        const auto isSelected = [&](const StampItem& stamp) { return stamp.id == *selected; };
        if (std::any_of(page->begin(), page->end(), isSelected))
            return page.key();
    }
    return std::nullopt;
}

void ContentView::openPDF() {
    try {
        Q_EMIT documentExpected();
        const auto url = m_panels.runModal(OpenPanel{QStringLiteral("PDF auswählen"), ContentType::pdf});
        if (url)
            loadPDF(*url);
    } catch (...) {
        report(notLoaded(), Outcome::problem);
    }
}

void ContentView::cancelWork() {
    if (m_work)
        m_work->cancel();
}

bool ContentView::handlePDFDrop(const QList<QUrl>& items) {
    if (isWorking())
        return false;
    const auto file =
        std::find_if(items.begin(), items.end(), [](const QUrl& url) { return url.isLocalFile(); });
    if (file == items.end()) {
        report(QStringLiteral("Bitte eine PDF-Datei ablegen."), Outcome::problem);
        return false;
    }
    QMetaObject::invokeMethod(
        this, [this, url = *file] { loadDroppedFile(url); }, Qt::QueuedConnection);
    return true;
}

void ContentView::loadDroppedFile(const QUrl& url) {
    if (url.path().isEmpty())
        report(QStringLiteral("Drop fehlgeschlagen: Datei konnte nicht gelesen werden."), Outcome::problem);
    else if (QFileInfo(url.fileName()).suffix().toLower() == QStringLiteral("pdf"))
        loadPDF(url);
    else
        report(QStringLiteral("Nur PDF-Dateien werden unterstützt."), Outcome::problem);
}

/// Its first look is shown until all of it is there. What was shown before stays, as far as nobody sees it.
std::shared_ptr<const PDFDocument> ContentView::documentAt(const QUrl& url, WorkScope& work) {
    const auto show = [this](const std::shared_ptr<const PDFDocument>& look) {
        const auto take = [this, look] {
            if (isWorking())
                firstLook = look;
        };
        QMetaObject::invokeMethod(this, take, Qt::QueuedConnection);
    };
    const auto end = qScopeGuard([this] { firstLook = nullptr; });
    return work.await(
        [&](WorkProgress* progress) { return PDFDocument::open(url, m_processes, progress, show); });
}

void ContentView::loadPDF(const QUrl& url) {
    if (isWorking())
        return;
    WorkScope work(*this, QStringLiteral("PDF wird geladen…"), WorkScope::AtEnd::cancel);
    try {
        const auto document = documentAt(url, work);
        m_versions = FileVersions(document->content());
        pdfDocument = document;
        pdfSourceURL = url;
        currentPageIndex = 0;
        stampsByPage = StampsByPage();
        selectedStampID = std::nullopt;
        m_saved = stampsNow();
        reportWithRemark(QStringLiteral("PDF geladen: ") + url.fileName(), damageText(document->damage()));
    } catch (...) {
        if (work.isCancelled())
            report(QStringLiteral("Laden abgebrochen."), Outcome::success);
        else
            report(notLoaded(), Outcome::problem);
    }
}

void ContentView::beginSaveFlow(SaveMode mode) {
    if (pdfDocument.value() && !isWorking())
        performSave(mode);
}

void ContentView::performSave(SaveMode mode) {
    switch (mode) {
        case SaveMode::overwriteOriginal:
            return saveOverOriginalPDF();
        case SaveMode::saveAs:
            return saveAsNewPDF();
    }
}

static QString isBeingSaved() {
    return QStringLiteral("PDF wird gespeichert…");
}

static QString savingCancelled() {
    return QStringLiteral("Speichern abgebrochen.");
}

void ContentView::saveOverOriginalPDF() {
    const auto document = pdfDocument.value();
    const std::optional<QUrl> url = pdfSourceURL;
    if (!document || !url) {
        report(QStringLiteral("Keine originale PDF-Datei zum Überschreiben verfügbar."), Outcome::problem);
        return;
    }
    WorkScope work(*this, isBeingSaved(), WorkScope::AtEnd::finish);
    const SavedStamps written = stampsNow();
    try {
        const QString missing = work.await([&, stamps = stampsByPage.value()](WorkProgress* progress) {
            return PDFExporter::replaceOriginal(*document, stamps, *url, m_versions, progress);
        });
        pdfSourceURL = url;
        m_saved = written;
        reportWithRemark(QStringLiteral("Original überschrieben: ") + url->fileName(), missing);
    } catch (...) {
        if (work.isCancelled())
            report(savingCancelled(), Outcome::success);
        else
            report(QStringLiteral("Fehler beim Überschreiben: ") + Error::current().localizedDescription(),
                   Outcome::problem);
    }
}

/// Of the exception that is being handled.
static QString notSavedAs() {
    return QStringLiteral("Fehler beim Speichern unter: ") + Error::current().localizedDescription();
}

void ContentView::saveAsNewPDF() {
    const auto document = pdfDocument.value();
    if (!document)
        return;
    try {
        const auto url = m_panels.runModal(SavePanel{QStringLiteral("PDF speichern unter"), ContentType::pdf,
                                                     defaultSaveAsFilename(), pdfSourceURL});
        if (url)
            saveAsNewPDF(*document, *url);
        else
            report(QStringLiteral("Speichern unter abgebrochen."), Outcome::success);
    } catch (...) {
        report(notSavedAs(), Outcome::problem);
    }
}

void ContentView::saveAsNewPDF(const PDFDocument& document, const QUrl& url) {
    WorkScope work(*this, isBeingSaved(), WorkScope::AtEnd::finish);
    const SavedStamps written = stampsNow();
    try {
        const QString missing = work.await([&, stamps = stampsByPage.value()](WorkProgress* progress) {
            return PDFExporter::save(document, stamps, url, m_versions, progress);
        });
        pdfSourceURL = url;
        m_saved = written;
        reportWithRemark(QStringLiteral("PDF gespeichert: ") + url.fileName(), missing);
    } catch (...) {
        if (work.isCancelled())
            report(savingCancelled(), Outcome::success);
        else
            report(notSavedAs(), Outcome::problem);
    }
}

QString ContentView::defaultSaveAsFilename() const {
    const std::optional<QUrl> url = pdfSourceURL;
    return url ? url->fileName() : QStringLiteral("gestempelt.pdf");
}

static Error insertFailure() {
    return Error(Error::vellmoraDomain, 1, QStringLiteral("Stempel konnte nicht vorbereitet werden."));
}

void ContentView::importStampToLibrary() {
    try {
        const auto url = m_stampLibrary->openImportPanel();
        if (!url)
            return;
        const StampPreset preset = m_stampLibrary->importPreset(*url);
        report(QStringLiteral("Stempel importiert: ") + preset.displayName, Outcome::success);
    } catch (...) {
        report(QStringLiteral("Stempel konnte nicht importiert werden: ") +
                   Error::current().localizedDescription(),
               Outcome::problem);
    }
}

void ContentView::addStampToCurrentPage(const std::optional<StampPreset>& preset) {
    try {
        const auto image = preset ? m_stampLibrary->image(*preset) : std::nullopt;
        if (!image) {
            report(QStringLiteral("Kein aktiver Stempel gewählt."), Outcome::problem);
            return;
        }
        addStampToCurrentPage(*image, preset->id);
        const QString name = m_stampLibrary->current(*preset).displayName;
        m_stampLibrary->recordUse(preset->id);
        report(QStringLiteral("Stempel auf Seite ") + QString::number(currentPageIndex.value() + 1) +
                   QStringLiteral(" eingefügt: ") + name,
               Outcome::success);
    } catch (...) {
        report(Error::current().localizedDescription(), Outcome::problem);
    }
}

void ContentView::addStampToCurrentPage(const Image& image, const QUuid& presetID) {
    const auto document = pdfDocument.value();
    const auto page = document ? document->page(currentPageIndex) : std::nullopt;
    if (!page)
        throw insertFailure();
    const QByteArray png = image.pngRepresentation();
    if (png.isEmpty())
        throw insertFailure();
    const StampPlacement placement = initialPlacement(*page, image.size());
    StampItem stamp;
    stamp.pageIndex = currentPageIndex;
    stamp.rect = placement.rect;
    stamp.aspectRatio = placement.aspectRatio;
    stamp.imageData = sharedWithPlacedStamps(png);
    stamp.presetID = presetID;
    Q_EMIT willPlaceStamp(stamp.imageData, image);
    StampsByPage stamps = stampsByPage;
    stamps[currentPageIndex].append(stamp);
    stampsByPage = stamps;
    selectedStampID = stamp.id;
}

/// The bytes of a placed stamp with the same picture, so that it is kept and decoded once; else the bytes
/// given.
QByteArray ContentView::sharedWithPlacedStamps(const QByteArray& imageData) const {
    for (const QList<StampItem>& stamps : stampsByPage.value()) {
        for (const StampItem& stamp : stamps) {
            if (stamp.imageData == imageData)
                return stamp.imageData;
        }
    }
    return imageData;
}

void ContentView::deleteSelectedStamp() {
    const std::optional<QUuid> selected = selectedStampID;
    if (!selected)
        return;
    StampsByPage stamps = stampsByPage;
    for (QList<StampItem>& onPage : stamps)
        onPage.removeIf([&](const StampItem& stamp) { return stamp.id == *selected; });
    stampsByPage = stamps;
    selectedStampID = std::nullopt;
    report(QStringLiteral("Ausgewählter Stempel gelöscht."), Outcome::success);
}

void ContentView::removePreset(const QUuid& id) {
    StampsByPage stamps = stampsByPage;
    for (QList<StampItem>& onPage : stamps)
        onPage.removeIf([&](const StampItem& stamp) { return stamp.presetID == id; });
    stamps.removeIf([](const auto& page) { return page.value().isEmpty(); });
    stampsByPage = stamps;
    // The selection stays, even where it names a stamp that is gone: only a deletion and a load clear it.
    try {
        m_stampLibrary->removePreset(id);
        report(QStringLiteral("Stempel aus Bibliothek entfernt."), Outcome::success);
    } catch (...) {
        report(QStringLiteral("Stempel konnte nicht entfernt werden: ") +
                   Error::current().localizedDescription(),
               Outcome::problem);
    }
}

}  // namespace vellmora
