#pragma once

#include <QApplication>
#include <QTranslator>

namespace vellmora {

/// The application entry: the toolkit set up as this program needs it, German whatever the system's locale.
class VellmoraApp {
public:
    VellmoraApp(int& argc, char** argv);

    int run() { return QApplication::exec(); }

private:
    QApplication m_application;
    QTranslator m_toolkitTexts;
};

}  // namespace vellmora
