#pragma once

#include <optional>

#include <QApplication>
#include <QTranslator>
#include <QUrl>

namespace vellmora {

/// The application entry: Qt set up as this program needs it, in German whatever the system's language is. To
/// be made first of all in `main`, before any thread is started.
class VellmoraApp {
public:
    VellmoraApp(int& argc, char** argv);

    /// What the command line asks for.
    struct Request {
        std::optional<QUrl> document;
        bool isForHandbook = false;  ///< to be shown in place of a window
    };
    /// Ends the program where the command line asks for help or the version, or makes no sense.
    Request request() const;

    int run() { return QApplication::exec(); }

private:
    QApplication m_application;
    QTranslator m_qtTexts;
};

}  // namespace vellmora
