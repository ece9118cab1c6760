// SPDX-License-Identifier: MIT
#include "core/data_location.h"

#include "tests/support/qt_printers.h"

#include <QStandardPaths>

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

// Existing caches and logs have these names.
TEST(DataLocationTest, NamesBelowTheGenericDataLocation)
{
    const QString base = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    ASSERT_FALSE(base.isEmpty());
    EXPECT_EQ(dataFolder(), base + "/KESTRAVO_Thumbnail");
    EXPECT_EQ(defaultDatabasePath(), base + "/KESTRAVO_Thumbnail/thumbnail.db");
    EXPECT_EQ(defaultLogPath(), base + "/KESTRAVO_Thumbnail/thumbnail.log");
    EXPECT_EQ(thumbnailImageFolder(), base + "/KESTRAVO_Thumbnail/thumbnailImage/");
}

} // namespace
} // namespace zr::test
