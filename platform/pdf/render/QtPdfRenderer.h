#pragma once

#include "platform/pdf/render/PageRenderer.h"

#include <QObject>

namespace vellmora {

/// Renders in this process, on the main thread. What was asked for and not yet begun is dropped with the
/// object.
class QtPdfRenderer : public PageRenderer {
public:
    void render(const PageRenderRequest& request, Completion completion) override;

private:
    QObject m_lifetime;
};

}  // namespace vellmora
