#include "base/FileLock.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include <QDir>
#include <QTemporaryDir>

using namespace vellmora;

TEST(FileLockTest, WithoutLocksOfTheFileSystemTooOneHoldsItAtATimeAndNobodyLosesIt) {
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("lock"));
    ASSERT_TRUE(QDir().mkdir(path)) << "what stands there is no file that could be locked";
    std::atomic<int> holders = 0;
    std::atomic<int> wrong = 0;
    {
        constexpr int count = 48;
        std::vector<std::jthread> threads;
        threads.reserve(count);
        for (int i = 0; i < count; ++i) {
            threads.emplace_back([&] {
                try {
                    for (int round = 0; round < 200; ++round) {
                        const FileLock lock(path);
                        wrong += ++holders == 1 ? 0 : 1;
                        --holders;
                    }
                } catch (...) {
                    ++wrong;
                }
            });
        }
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
              QStringList(QStringLiteral("lock")));
}
