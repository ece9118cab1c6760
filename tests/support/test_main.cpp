// SPDX-License-Identifier: MIT
// main() of the test programs. The code under test expects a running Qt application, as in a request, unless
// --without-application is given, for tests that start it themselves or need none.

#include "tests/support/test_environment.h"

#include <QApplication>

#include <algorithm>
#include <cstring>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    zr::test::prepareTestEnvironment();
    const bool withoutApplication = std::any_of(argv + 1, argv + argc, [](const char* argument) {
        return std::strcmp(argument, "--without-application") == 0;
    });
    if (!withoutApplication) {
        // Never destroyed, as in the product.
        static auto* const application = new QApplication(argc, argv);
        Q_UNUSED(application)
    }
    return RUN_ALL_TESTS();
}
