#pragma once

#include "base/Image.h"
#include "library/StampPreset.h"
#include "ui/FocusRing.h"
#include "ui/Theme.h"

#include <functional>

#include <QMenu>
#include <QPointer>
#include <QWidget>

namespace vellmora {

/// What tile and row have in common. Each shows one entry of the library. A click or the Space key selects
/// it, the Return key inserts it, the Delete key deletes it where that is offered; a menu has the same.
class PresetItem : public QWidget {
    Q_OBJECT

public:
    struct Data {
        StampPreset preset;
        DeferredPicture picture;
        bool isSelected = false;
    };
    struct Callbacks {
        std::function<void(const StampPreset&)> onSelect;
        std::function<void(const StampPreset&)> onInsert;
        std::function<void(const StampPreset&)> onDelete;  ///< empty where the view offers no delete
    };
    struct Look {
        double radius;
        double selectedOpacity;    ///< of the ground, which is the accent colour then
        double unselectedOpacity;  ///< of the ground, which is black then
        double borderWidth;        ///< of a selected item; 0: no border
    };

    PresetItem(const Look& look, Callbacks callbacks, QWidget* parent);

    const StampPreset& preset() const { return m_data.preset; }
    bool isSelected() const { return m_data.isSelected; }
    virtual void setData(const Data& newData);

    const Callbacks& callbacks() const { return m_callbacks; }
    bool canDelete() const { return bool(m_callbacks.onDelete); }
    void select() { m_callbacks.onSelect(m_data.preset); }
    void insert() { m_callbacks.onInsert(m_data.preset); }
    void remove() { m_callbacks.onDelete(m_data.preset); }

    /// Null while the menu is closed.
    QMenu* openMenu() const { return m_menu; }
    /// The keyboard moved the focus here, and a ring shows it.
    bool showsFocus() const { return m_focusRing.isShown(); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void showMenu(const QPoint& globalPosition);

    Look m_look;
    Callbacks m_callbacks;
    Data m_data;
    FocusRing m_focusRing;
    QPointer<QMenu> m_menu;
};

}  // namespace vellmora
