// SPDX-License-Identifier: MIT
// Pictures that no row names yet: a request may be about to record them.

#include "cache/cache_care.h"

#include "core/data_location.h"
#include "tests/cache/care_fixture.h"
#include "tests/support/faster_clock.h"
#include "tests/support/files.h"
#include "tests/support/qt_printers.h"

#include <QDateTime>

namespace zr::test
{
namespace
{

class YoungPicturesTest : public CareTest
{
protected:
    // Runs `meanwhile` each time that there is a wait.
    CareResult care(CareResult (*function)(const CareCallbacks&), const std::function<void()>& meanwhile = {})
    {
        m_waits = 0;
        return function({[this] { return m_isCancelled; },
                         [this, &meanwhile] {
                             ++m_waits;
                             if (meanwhile)
                                 meanwhile();
                         }});
    }

    int m_waits = 0;
    bool m_isCancelled = false;

private:
    const FasterClock m_clock;
};

TEST_F(YoungPicturesTest, AreRemovedAfterAWait)
{
    picture("young.png", 0);
    picture("old.png");
    const CareResult result = care(pruneCache);
    EXPECT_EQ(m_waits, 1);
    EXPECT_EQ(result.pictures, 2);
    EXPECT_EQ(pictures(), QStringList());
}

TEST_F(YoungPicturesTest, StayWhenTheirRowComesMeanwhile)
{
    for (auto* const function : {pruneCache, clearCache}) {
        execute("delete from thumbnail");
        const QString path = source("part.stl");
        const QString png = picture("part.stlstl.png", 0);
        picture(".leftover.png", 0);
        const CareResult result = care(function, [&] { addRow(path, png); });
        EXPECT_EQ(m_waits, 1);
        EXPECT_EQ(result.pictures, 1);
        EXPECT_EQ(rows(), QStringList(path));
        EXPECT_EQ(pictures(), QStringList("part.stlstl.png"));
    }
}

TEST_F(YoungPicturesTest, AreNotWaitedForWhenARowNamesThem)
{
    addRow(source("part.stl"), picture("part.stlstl.png", 0));
    care(pruneCache);
    EXPECT_EQ(m_waits, 0);
    EXPECT_EQ(pictures(), QStringList("part.stlstl.png"));
}

TEST_F(YoungPicturesTest, StayWhileTheyAreMadeAgain)
{
    picture("busy.png", 0);
    qint64 seconds = 0;
    const CareResult result = care(pruneCache, [&seconds] { picture("busy.png", --seconds); });
    EXPECT_EQ(m_waits, 2);
    EXPECT_EQ(result.pictures, 0);
    EXPECT_EQ(result.keptPictures, 0);
    EXPECT_EQ(pictures(), QStringList("busy.png"));
}

// Their age cannot be told, so the wait is.
TEST_F(YoungPicturesTest, OfTheFutureAreRemovedAfterAWait)
{
    picture("future.png", -1000000);
    const CareResult result = care(pruneCache);
    EXPECT_EQ(m_waits, 1);
    EXPECT_EQ(result.pictures, 1);
}

// It was old when the folder was listed.
TEST_F(YoungPicturesTest, StayWhenTheyWereMadeAnewAfterTheListing)
{
    picture("young.png", 0);
    picture("old.png");
    int asked = 0;
    const CareResult result = pruneCache({[&asked] {
                                              if (++asked == 3)
                                                  picture("old.png", 0);
                                              return asked > 20;
                                          },
                                          {}});
    EXPECT_TRUE(result.isInterrupted);
    EXPECT_EQ(result.pictures, 0);
    EXPECT_EQ(pictures(), QStringList({"old.png", "young.png"}));
}

TEST_F(YoungPicturesTest, AreNotWaitedForAfterAnInterruption)
{
    picture("young.png", 0);
    const CareResult result = care(clearCache, [this] { m_isCancelled = true; });
    EXPECT_TRUE(result.isInterrupted);
    EXPECT_EQ(m_waits, 1);
    EXPECT_EQ(pictures(), QStringList("young.png"));
}

} // namespace
} // namespace zr::test
