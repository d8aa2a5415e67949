#pragma once

#include "ui/Button.h"
#include "ui/PictureView.h"
#include "ui/SidebarBoxes.h"
#include "ui/TextLabel.h"

namespace vellmora {

/// Shows the stamp that the next insert uses, in large. Where there is none, or its picture cannot be loaded,
/// a hint is shown instead.
class ActiveStampBox : public GroupBox {
    Q_OBJECT

public:
    ActiveStampBox(SidebarCallbacks callbacks, Thumbnails& thumbnails, const Theme& theme, QWidget* parent);

    void setPreset(const std::optional<StampPreset>& preset);
    void setHasDocument(bool hasDocument);
    /// The one that comes last for the Tab key.
    QWidget& lastButton() { return *m_remove; }

private:
    QWidget* makeStamp(Thumbnails& thumbnails, const Theme& theme);
    QWidget* makeHint(const Theme& theme);
    void showStamp(bool isLoadable);

    SidebarCallbacks m_callbacks;
    std::optional<StampPreset> m_preset;
    PictureView* m_picture = nullptr;
    TextLabel* m_name = nullptr;
    QWidget* m_builtinMark = nullptr;
    Button* m_insert = nullptr;
    Button* m_remove = nullptr;
    QWidget* m_stamp;
    QWidget* m_hint;
};

}  // namespace vellmora
