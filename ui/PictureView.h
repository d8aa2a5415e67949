#pragma once

#include "ui/Symbols.h"
#include "ui/Thumbnails.h"

#include <functional>

#include <QWidget>

namespace vellmora {

/// A picture scaled to fit into its frame, on a tinted ground with round corners. Where that ground is dark,
/// the picture lies on a sheet of paper. Where there is no picture, a symbol stands for it.
class PictureView : public QWidget {
    Q_OBJECT

public:
    struct Style {
        int padding;        ///< between the ground's edge and the picture's frame
        int frameHeight;    ///< of the picture; the view is higher by the padding
        double radius;      ///< of the ground's corners
        double opacity;     ///< of the ground's black
        double symbolSize;  ///< of the symbol that stands for a missing picture
    };

    PictureView(const Style& style, Thumbnails& thumbnails, QWidget* parent);

    void setSource(const DeferredPicture& source);

    /// True only after a try to load the picture has failed.
    bool isKnownToBeMissing(const DeferredPicture& source) const {
        return m_thumbnails.isKnownToBeMissing(source);
    }

    /// Called when loading the picture has ended.
    std::function<void(bool isMissing)> onLoaded;

protected:
    void showEvent(QShowEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void thumbnailChanged(const QString& version);
    QSize wantedPixels() const;
    void paintPaper(QPainter& painter, const QRectF& picture) const;

    Style m_style;
    Thumbnails& m_thumbnails;
    DeferredPicture m_source;
    QPixmap m_shown;  ///< shown, scaled, until the picture is loaded in a new size
};

}  // namespace vellmora
