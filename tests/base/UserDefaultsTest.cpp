#include "base/UserDefaults.h"
#include "tests/support/GTestQt.h"
#include "tests/support/TestPdf.h"

#include <QTemporaryDir>

using namespace vellmora;
using namespace vellmora::test;

namespace {

const QString key = QStringLiteral("Vellmora.key");

void setList(UserDefaults&& defaults, const QStringList& list) {
    defaults.changeStringList(key, [&](const QStringList&) { return list; });
}

}  // namespace

TEST(UserDefaultsTest, KeepsStringsAndListsApartAcrossStarts) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("settings.json"));
    const QString other = QStringLiteral("Vellmora.other");
    setList(UserDefaults(file), {QStringLiteral("one")});
    UserDefaults(file).setString(other, QStringLiteral("text"));

    UserDefaults defaults(file);
    EXPECT_EQ(defaults.stringList(key), QStringList{QStringLiteral("one")});
    EXPECT_FALSE(defaults.string(key));
    EXPECT_EQ(defaults.string(other), QStringLiteral("text"));
    EXPECT_FALSE(defaults.stringList(other));

    setList(UserDefaults(file), {});
    EXPECT_EQ(UserDefaults(file).stringList(key), QStringList());
    defaults.remove(other);
    EXPECT_FALSE(UserDefaults(file).string(other));
}

TEST(UserDefaultsTest, WrongTypesAndUnreadableFilesCountAsAbsent) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("settings.json"));
    writeFile(file, R"({"Vellmora.key": [1, "two"], "Vellmora.number": 7})");
    EXPECT_FALSE(UserDefaults(file).stringList(key));
    EXPECT_FALSE(UserDefaults(file).string(QStringLiteral("Vellmora.number")));
    writeFile(file, "{ broken");
    UserDefaults defaults(file);
    EXPECT_FALSE(defaults.stringList(key));
    defaults.setString(key, QStringLiteral("kept"));
    EXPECT_EQ(UserDefaults(file).string(key), QStringLiteral("kept"));
}

TEST(UserDefaultsTest, AFileThatCannotBeWrittenKeepsTheValuesAndIsTriedAgain) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("config/settings.json"));
    writeFile(folder.filePath(QStringLiteral("config")), "a file where the folder should be");
    UserDefaults defaults(file);
    defaults.setString(key, QStringLiteral("kept"));
    EXPECT_EQ(defaults.string(key), QStringLiteral("kept"));
    QFile::remove(folder.filePath(QStringLiteral("config")));
    defaults.setString(QStringLiteral("Vellmora.other"), QStringLiteral("text"));
    EXPECT_EQ(UserDefaults(file).string(key), QStringLiteral("kept"));
}

TEST(UserDefaultsTest, KeepsWhatAnotherProgramWrote) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("settings.json"));
    UserDefaults first(file);
    UserDefaults(file).setString(QStringLiteral("Vellmora.other"), QStringLiteral("text"));
    first.setString(key, QStringLiteral("kept"));
    EXPECT_EQ(UserDefaults(file).string(QStringLiteral("Vellmora.other")), QStringLiteral("text"));
}

TEST(UserDefaultsTest, AValueThatTheFileLostIsWrittenAgain) {
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("settings.json"));
    UserDefaults defaults(file);
    defaults.setString(key, QStringLiteral("kept"));
    QFile::remove(file);
    defaults.setString(key, QStringLiteral("kept"));
    EXPECT_EQ(UserDefaults(file).string(key), QStringLiteral("kept"));
}
