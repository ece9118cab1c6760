// SPDX-License-Identifier: MIT
#include "cache/thumbnail_database.h"

#include "core/log_file.h"
#include "tests/support/data_folder_fixture.h"
#include "tests/support/qt_printers.h"

#include <atomic>
#include <thread>
#include <vector>

namespace zr::test
{
namespace
{

constexpr int kThreads = 8;
constexpr int kRecordsPerThread = 25;

class ThumbnailDatabaseThreadsTest : public DataFolderTest
{
};

TEST_F(ThumbnailDatabaseThreadsTest, ObjectsOfManyThreadsTakeTurns)
{
    createDataFolder();
    std::atomic<int> saved{0};
    std::vector<std::thread> threads;
    threads.reserve(kThreads);
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([thread, &saved] {
            for (int i = 0; i < kRecordsPerThread; ++i) {
                ThumbnailRecord record;
                record.thumPath = "/png";
                record.filePath = QStringLiteral("/%1/%2").arg(thread).arg(i);
                ThumbnailDatabase database{QString()};
                if (database.saveRecord(record.filePath, record))
                    ++saved;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(saved, kThreads * kRecordsPerThread);

    const ThumbnailDatabase database{QString()};
    for (int thread = 0; thread < kThreads; ++thread) {
        for (int i = 0; i < kRecordsPerThread; ++i) {
            const QString path = QStringLiteral("/%1/%2").arg(thread).arg(i);
            EXPECT_EQ(database.queryValue(path, "thumPath").toString(), "/png") << path.toStdString();
        }
    }
    EXPECT_EQ(logMessages(), QStringList());
}

} // namespace
} // namespace zr::test
