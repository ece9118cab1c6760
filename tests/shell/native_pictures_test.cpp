// SPDX-License-Identifier: MIT
// The DLL makes the same pictures as the Linux host.

#include "tests/shell/native_pictures.h"
#include "tests/shell/server_test.h"
#include "tools/samples/sample_files.h"

namespace zr::test
{
namespace
{

class NativePicturesTest : public ServerTest
{
};

TEST_F(NativePicturesTest, EverySampleLooksTheSame)
{
    for (const samples::SampleFile& sample : samples::sampleFiles()) {
        SCOPED_TRACE(sample.name);
        const QString name = QString::fromLatin1(sample.name);
        expectNativePicture(name, request(writeSource(name, sample.make())));
    }
}

} // namespace
} // namespace zr::test
