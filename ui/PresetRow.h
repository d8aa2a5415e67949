#pragma once

#include "ui/Button.h"
#include "ui/PictureView.h"
#include "ui/PresetItem.h"
#include "ui/TextLabel.h"

namespace vellmora {

/// One line of the recently used stamps: picture, name, the date on which the entry was created, and a button
/// to insert.
class PresetRow : public PresetItem {
    Q_OBJECT

public:
    PresetRow(const Callbacks& callbacks, Thumbnails& thumbnails, const Theme& theme, QWidget* parent);

    void setData(const Data& newData) override;

    Button& insertButton() { return *m_insert; }

private:
    PictureView* m_picture;
    TextLabel* m_name;
    TextLabel* m_date;
    Button* m_insert;
};

}  // namespace vellmora
