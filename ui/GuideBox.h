#pragma once

#include "ui/GroupBox.h"

namespace vellmora {

/// How the program is used, in five lines.
class GuideBox : public GroupBox {
    Q_OBJECT

public:
    GuideBox(const Theme& theme, QWidget* parent);
};

}  // namespace vellmora
