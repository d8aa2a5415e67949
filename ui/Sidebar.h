#pragma once

#include "ui/LibraryList.h"
#include "ui/Theme.h"

#include <QWidget>

namespace vellmora {

/// The left column of the window.
class Sidebar : public QWidget {
    Q_OBJECT

public:
    struct Data {
        LibraryList::Data library;
    };
    struct Callbacks {
        LibraryList::Callbacks library;
    };

    Sidebar(const Callbacks& callbacks, const Theme& theme, QWidget* parent);

    void setData(const Data& newData);

private:
    LibraryList* m_library;
};

}  // namespace vellmora
