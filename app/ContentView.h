#pragma once

#include "base/FilePanels.h"
#include "base/FileVersions.h"
#include "base/SerialQueue.h"
#include "library/StampItem.h"
#include "library/StampLibrary.h"
#include "pdf/PDFDocument.h"

#include <memory>
#include <optional>

#include <QObject>
#include <QProperty>
#include <QPropertyNotifier>
#include <QUrl>

namespace vellmora {

class DocumentProcesses;
class WorkProgress;

/// The document workspace of one window and the program's commands.
///
/// The fields are state cells: views read them, are told of changes, and bind to some of them in both
/// directions. Every command ends with a German message in `statusText` or, where it had no effect, leaves it
/// as it was; no command throws. Main thread only.
///
/// While a document is read or written the event loop runs, inside of the command. Other commands that do the
/// same have no effect meanwhile.
class ContentView : public QObject {
    Q_OBJECT

public:
    enum class SaveMode { overwriteOriginal, saveAs };
    static QString actionLabel(SaveMode mode);

    /// `panels` and `processes` must outlive the object.
    ContentView(std::unique_ptr<StampLibrary> library, FilePanels& panels, DocumentProcesses& processes);
    ~ContentView() override;

    StampLibrary& stampLibrary() { return *m_stampLibrary; }
    const StampLibrary& stampLibrary() const { return *m_stampLibrary; }

    QProperty<std::shared_ptr<const PDFDocument>> pdfDocument;
    /// A look at the document that is being loaded, where that takes long. Nothing else of the workspace is
    /// of it, and it may come to nothing.
    QProperty<std::shared_ptr<const PDFDocument>> firstLook;
    QProperty<StampsByPage> stampsByPage;
    QProperty<qsizetype> currentPageIndex{0};  ///< 0-based
    QProperty<std::optional<QUuid>> selectedStampID;
    QProperty<QString> statusText{QStringLiteral("PDF laden, Stempelbibliothek füllen und loslegen.")};
    /// The status text tells of something that went wrong, or that is missing.
    QProperty<bool> isStatusProblem{false};
    QProperty<bool> isPDFDropTargeted{false};
    /// The file that the document came from or was last saved to; what "Speichern" writes over.
    QProperty<std::optional<QUrl>> pdfSourceURL;

    /// How much of the work that takes long is done, 0 to 1; nothing while there is none.
    QProperty<std::optional<double>> workProgress;

    /// A document is being read or written. No command that would do the same begins meanwhile.
    bool isWorking() const { return m_work != nullptr; }
    /// Has the work end as soon as it can, with everything as it was before. It may be done already.
    void cancelWork();

    /// "3 / 12", or an en dash without a document.
    QString pageDisplayText() const;
    /// Stamps on all pages.
    qsizetype totalStampCount() const;
    /// Stamps were placed, changed or removed since the document was loaded or last saved.
    bool hasUnsavedStamps() const;
    /// The page that the selected stamp lies on; nothing without one.
    std::optional<qsizetype> pageOfSelectedStamp() const;

    enum class Outcome { success, problem };
    /// Every command ends with this: it writes the status text and says so, also where the text is the same
    /// as before.
    void report(const QString& text, Outcome outcome);

    void openPDF();
    /// Takes the first file of what was dropped and answers true, or refuses the drop. The file is loaded
    /// when the drop is over: whoever dragged it waits for the answer. Refused as well while a document is
    /// read or written.
    bool handlePDFDrop(const QList<QUrl>& items);
    void loadPDF(const QUrl& url);

    void importStampToLibrary();
    void addStampToCurrentPage(const std::optional<StampPreset>& preset);
    void deleteSelectedStamp();
    /// Removes a library entry and every stamp that was placed from it.
    void removePreset(const QUuid& id);

    void beginSaveFlow(SaveMode mode);
    /// Proposed name for "Speichern unter…".
    QString defaultSaveAsFilename() const;

Q_SIGNALS:
    /// A document is likely to be opened next: it is being chosen, or dragged over the window.
    void documentExpected();
    /// Around work that may take long: reading or writing a document. No panel is open in between.
    void willWork();
    /// In between, once the work has taken a while. The event loop runs.
    void worksLong();
    void didWork();
    /// The status text says what a command did, or what is being done.
    void didReport();
    /// A stamp with these bytes is placed next; `image` is what they hold. A view that shows it need not
    /// decode them again.
    void willPlaceStamp(const QByteArray& imageData, const Image& image);

private:
    class WorkScope;

    /// The stamps as a document has them that was just loaded or saved.
    struct SavedStamps {
        qint64 revision = 0;
        qsizetype count = 0;
    };

    /// Reports a success and, where there is something missing, that.
    void reportWithRemark(const QString& message, const QString& remark);
    SavedStamps stampsNow() const { return {m_stampsRevision, totalStampCount()}; }
    void loadDroppedFile(const QUrl& url);
    std::shared_ptr<const PDFDocument> documentAt(const QUrl& url, WorkScope& work);
    void addStampToCurrentPage(const Image& image, const QUuid& presetID);
    QByteArray sharedWithPlacedStamps(const QByteArray& imageData) const;
    void performSave(SaveMode mode);
    void saveOverOriginalPDF();
    void saveAsNewPDF();
    void saveAsNewPDF(const PDFDocument& document, const QUrl& url);

    std::unique_ptr<StampLibrary> m_stampLibrary;
    FilePanels& m_panels;
    DocumentProcesses& m_processes;
    WorkProgress* m_work = nullptr;  ///< of the work that is being done
    FileVersions m_versions;         ///< of the document's file
    qint64 m_stampsRevision = 0;     ///< counts the changes of `stampsByPage`
    SavedStamps m_saved;
    QPropertyNotifier m_stampsObserver;
    QPropertyNotifier m_dropObserver;
    SerialQueue m_workQueue;
};

}  // namespace vellmora
