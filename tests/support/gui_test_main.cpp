// main() of test programs whose code under test expects a running Qt application, as in a request.

#include "tests/support/test_environment.h"

#include <QApplication>

#include <gtest/gtest.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    zr::test::prepareTestEnvironment();
    // Never destroyed, as in the product.
    static auto* const application = new QApplication(argc, argv);
    Q_UNUSED(application)
    return RUN_ALL_TESTS();
}
