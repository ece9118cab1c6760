// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/data_folder_fixture.h"

namespace zr::test
{

/// A test that begins with an empty log.
class LoggedTest : public DataFolderTest
{
protected:
    void SetUp() override
    {
        DataFolderTest::SetUp();
        restartLog();
    }
};

} // namespace zr::test
