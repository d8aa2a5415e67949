#pragma once

#include <clocale>
#include <string>

#include <QProcess>
#include <QTemporaryDir>

namespace vellmora::test {

/// While it lives, the C library writes and reads numbers as the program's process does on a German desktop:
/// with a comma. Where the machine has no German locale one is made in a temporary folder.
class GermanNumbers {
public:
    GermanNumbers() {
        if (std::setlocale(LC_NUMERIC, name) != nullptr)
            return;
        QProcess maker;
        maker.start(QStringLiteral("localedef"),
                    {QStringLiteral("-i"), QStringLiteral("de_DE"), QStringLiteral("-f"),
                     QStringLiteral("UTF-8"), m_folder.filePath(QString::fromLatin1(name))});
        maker.waitForFinished();
        qputenv("LOCPATH", m_folder.path().toUtf8());
        std::setlocale(LC_NUMERIC, name);
        qunsetenv("LOCPATH");
    }
    ~GermanNumbers() { std::setlocale(LC_NUMERIC, m_before.c_str()); }
    GermanNumbers(const GermanNumbers&) = delete;
    GermanNumbers& operator=(const GermanNumbers&) = delete;

    /// Not where the means for it are not installed.
    bool areInUse() const { return *std::localeconv()->decimal_point == ','; }

private:
    static constexpr const char* name = "de_DE.UTF-8";

    std::string m_before = std::setlocale(LC_NUMERIC, nullptr);
    QTemporaryDir m_folder;
};

}  // namespace vellmora::test
