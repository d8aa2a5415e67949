#include "editor/EditorOverlayView.h"

namespace vellmora {

EditorOverlayView::EditorOverlayView(QWidget* pageView) : QWidget(pageView) {}

}  // namespace vellmora
