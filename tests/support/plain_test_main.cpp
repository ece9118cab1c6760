// main() of test programs that start Qt's application themselves, or need none.

#include "tests/support/test_environment.h"

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    zr::test::prepareTestEnvironment();
    return RUN_ALL_TESTS();
}
