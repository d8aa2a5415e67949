#include "base/Error.h"
#include "base/FileLock.h"
#include "library/StampPresetJson.h"
#include "tests/faults/FaultShim.h"
#include "tests/faults/Wholeness.h"
#include "tests/support/GTestQt.h"
#include "tests/support/LongRun.h"
#include "tests/support/TestImages.h"
#include "tests/support/TestPdf.h"
#include "tests/support/TestWorkspace.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <QDir>
#include <QHash>
#include <QProcess>
#include <QSysInfo>

using namespace vellmora;
using namespace vellmora::test;

namespace {

/// Several real programs at work on one library, some of which are killed.
class SharedLibraryFaultTest : public testing::Test {
protected:
    using Program = std::unique_ptr<QProcess>;

    SharedLibraryFaultTest() {
        writeFile(workspace.path(QStringLiteral("Kanzlei.png")), plainPng(40, 20, Qt::red));
    }

    /// `faults` as in the shim's variable, without the folder.
    Program start(int rounds, const QString& faults = {}) {
        auto program = std::make_unique<QProcess>();
        program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        if (!faults.isEmpty())
            environment.insert(QStringLiteral("VELLMORA_FAULTS"),
                               faults + QLatin1Char(' ') + workspace.path(QString()));
        program->setProcessEnvironment(environment);
        program->start(QStringLiteral(VELLMORA_STAMP_JOB),
                       {QStringLiteral("library"), workspace.path(QString()), QString::number(rounds),
                        QStringLiteral("0")});
        return program;
    }
    /// Notes what the program has said to be done. True where it was killed.
    bool finish(QProcess& program) {
        EXPECT_TRUE(program.state() == QProcess::NotRunning || program.waitForFinished(120000));
        for (const QByteArray& line : program.readAllStandardOutput().split('\n')) {
            const QList<QByteArray> words = line.split(' ');
            if (words.size() == 2)
                state.insert(QUuid::fromString(QString::fromLatin1(words[1])), words[0]);
        }
        const bool isKilled = program.exitStatus() == QProcess::CrashExit;
        EXPECT_TRUE(isKilled ? program.exitCode() == SIGKILL : program.exitCode() == 0)
            << "a program was disturbed by another one";
        return isKilled;
    }
    /// Every stamp that a program has imported is there once, with its picture, unless it was removed.
    /// `unsure` is how many may be there that no program could tell of any more.
    void expectNothingLost(int unsure) {
        const auto stored = decodePresets(readFile(workspace.metadataFile()));
        ASSERT_TRUE(stored);
        QHash<QUuid, int> count;
        QHash<QString, int> builtins;
        for (const StampPreset& preset : *stored)
            ++(preset.isBuiltin() ? builtins[*preset.builtinKey] : count[preset.id]);
        EXPECT_EQ(builtins.size(), 5);
        EXPECT_EQ(std::count(builtins.cbegin(), builtins.cend(), 1), 5) << "a built-in one is doubled";
        for (auto it = state.cbegin(); it != state.cend(); ++it) {
            const int found = count.take(it.key());
            EXPECT_LE(found, 1) << "doubled";
            if (it.value() != "removing") {
                EXPECT_EQ(found, it.value() == "imported" ? 1 : 0) << it.value().toStdString();
            }
        }
        EXPECT_LE(count.size(), unsure);
        const auto library = workspace.makeLibrary();
        EXPECT_GE(library->presets().size(), stored->size() - 1)
            << "a removal that was not ended may lack its picture";
        for (const StampPreset& preset : library->presets())
            EXPECT_TRUE(library->image(preset));
        EXPECT_EQ(QDir(workspace.storeFolder()).entryList({QStringLiteral("*unlesbar*")}), QStringList());
        EXPECT_EQ(leftovers(workspace.path(QStringLiteral("data"))), QStringList());
    }
    void expectNothingLostByThree(const QString& faults) {
        std::vector<Program> programs;
        programs.reserve(3);
        for (int i = 0; i < 3; ++i)
            programs.push_back(start(12, faults));
        for (const Program& program : programs)
            EXPECT_FALSE(finish(*program));
        EXPECT_EQ(state.size(), 36);
        EXPECT_EQ(std::count(state.cbegin(), state.cend(), "removed"), 18);
        expectNothingLost(0);
        EXPECT_EQ(workspace.makeLibrary()->recentPresets().size(), 8);
    }

    TestWorkspace workspace;
    QHash<QUuid, QByteArray> state;  ///< the last that was told of a stamp
};

const QString withoutLocks = QStringLiteral("%1 1 %2 1 0").arg(faults::lockCall).arg(EOPNOTSUPP);

}  // namespace

TEST_F(SharedLibraryFaultTest, ThreeProgramsAtOnceLoseNothing) {
    expectNothingLostByThree({});
}

TEST_F(SharedLibraryFaultTest, NorDoTheyOnAFileSystemWithoutLocks) {
    expectNothingLostByThree(withoutLocks);
}

TEST_F(SharedLibraryFaultTest, ReadersSeeWholeFilesOnly) {
    const Program program = start(40);
    int looks = 0;
    while (!program->waitForFinished(1)) {
        if (const QByteArray metadata = readFile(workspace.metadataFile()); !metadata.isEmpty()) {
            EXPECT_TRUE(decodePresets(metadata)) << "half a file was seen";
            ++looks;
        }
    }
    EXPECT_GT(looks, 10);
    finish(*program);
}

TEST_F(SharedLibraryFaultTest, AProgramThatIsKilledAtAnyFileCallTakesNothingWithIt) {
    workspace.makeLibrary();
    int killed = 0;
    bool wasKilled = true;
    for (int nth = 1; wasKilled && !HasFailure(); nth += isLongRun() ? 1 : 9) {
        for (int after = 0; after < (isLongRun() ? 2 : 1); ++after) {
            SCOPED_TRACE("call " + std::to_string(nth) + (after ? ", after it" : ""));
            const Program victim =
                start(2, QStringLiteral("%1 %2 -1 0 %3").arg(faults::anyCall).arg(nth).arg(after));
            const Program other = start(2);
            wasKilled = finish(*victim);
            killed += wasKilled;
            EXPECT_FALSE(finish(*other));
            expectNothingLost(killed);
        }
    }
    std::printf("killed at %d places, %d stamps were imported\n", killed, int(state.size()));
    EXPECT_GT(killed, 10);
}

TEST_F(SharedLibraryFaultTest, ALockThatAKilledProgramHeldWithoutLocksIsTakenOver) {
    const QString path = workspace.path(QStringLiteral("lock"));
    const auto hold = [&](const QByteArray& holder) { writeFile(path + QStringLiteral(".held"), holder); };
    faults::arm({workspace.path(QString()).toStdString(), faults::lockCall, 1, ENOLCK, true});
    const pid_t gone = ::fork();
    if (gone == 0)
        ::_exit(0);
    ::waitpid(gone, nullptr, 0);
    hold(QSysInfo::machineUniqueId() + ' ' + QByteArray::number(gone) + " token");
    EXPECT_NO_THROW(FileLock{path});
    hold(QSysInfo::machineUniqueId() + ' ' + QByteArray::number(::getpid()) + " token");
    EXPECT_THROW(FileLock{path}, Error);
    hold("another-machine 1 token");
    EXPECT_THROW(FileLock{path}, Error);
    faults::disarm();
    EXPECT_NO_THROW(FileLock{path});
}
