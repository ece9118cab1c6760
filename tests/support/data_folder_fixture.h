// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

namespace zr::test
{

/// A test that starts without a data folder and can read what the code under test left there.
/// The data folder is a temporary one of the test program (under Wine: the prefix's own).
class DataFolderTest : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Makes the data folder, as any earlier request would have done.
    static void createDataFolder();
};

/// The log's messages in order, without their time stamps; checks that each line has a valid stamp.
/// A message that spans lines is one entry, its lines joined by "\n".
QStringList logMessages();

/// The two entries that a failure of a reader leaves: "number text" and "number+1  throw ".
QStringList failureLines(int number, const QString& text);

/// Ends this thread's log instance, makes the data folder if necessary, deletes the log and starts a new instance,
/// so that logMessages() shows only what follows.
void restartLog();

} // namespace zr::test
