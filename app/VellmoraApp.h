#pragma once

#include <future>
#include <optional>

#include <QApplication>
#include <QTranslator>
#include <QUrl>

namespace vellmora {

/// The application entry: the toolkit set up as this program needs it, German whatever the system's locale.
class VellmoraApp {
public:
    VellmoraApp(int& argc, char** argv);

    /// The file that is named on the command line. Ends the program where help or the version is asked for
    /// instead, or the words make no sense.
    std::optional<QUrl> documentToOpen() const;

    int run() { return QApplication::exec(); }

private:
    std::future<void> m_fontConfiguration;
    QApplication m_application;
    QTranslator m_toolkitTexts;
};

}  // namespace vellmora
