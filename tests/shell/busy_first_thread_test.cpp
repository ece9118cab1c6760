// SPDX-License-Identifier: MIT
// The thread on which Qt was started is busy while another one makes requests. A file browser's threads are
// independent: no request may wait until another thread handles messages.

#include "tests/shell/server_test.h"
#include "tests/support/qt_printers.h"
#include "tools/samples/sample_files.h"

#include <thread>

namespace zr::test
{
namespace
{

class BusyFirstThreadTest : public ServerTest
{
};

TEST_F(BusyFirstThreadTest, RequestsOfAnotherThreadDoNotWaitForIt)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        const QImage here = request(writeSource(QString("here-") + sample.name, sample.make()));
        QImage there;
        std::thread([&] {
            const Apartment apartment;
            there = request(writeSource(QString("there-") + sample.name, sample.make()));
        }).join();
        EXPECT_FALSE(here.isNull());
        EXPECT_EQ(there, here);
    }
}

} // namespace
} // namespace zr::test
