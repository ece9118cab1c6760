// SPDX-License-Identifier: MIT
// The zip, unpacked and registered with its own scripts.

#include "core/data_location.h"
#include "tests/packaging/package_test.h"
#include "tests/support/qt_printers.h"

#include <QDir>

namespace zr::test
{
namespace
{

class PortableZipTest : public PackageTest
{
};

TEST_F(PortableZipTest, WorksAnywhereAndAgainAfterMoving)
{
    const QString places[] = {
        QString::fromUtf8("C:/D\xc3\xb6ner & 3D (neu)/ZRThumbnail"),
        QString::fromUtf8("C:/\xc5\x82\xc3\xb3\xc5\xbc\xc4\x99 \xe6\x97\xa5\xe6\x9c\xac/it's 100"),
        "C:/" + QString(110, 'd') + '/' + QString(110, 'e')};
    QString place = unpackedZip();
    for (const QString& next : places) {
        SCOPED_TRACE(next.toStdString());
        copyFolder(unpackedZip(), next);
        // From here on, the former folder is gone.
        if (place != unpackedZip()) {
            ASSERT_TRUE(QDir(place).removeRecursively());
        }
        place = next;
        runBatch(place + "/register.cmd", "/q");
        expectThumbnailsBy(place);
        ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    }
    runBatch(place + "/unregister.cmd", "/q");
    expectNoThumbnails();
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, kClassKey));
    for (const QString& each : places)
        ASSERT_TRUE(QDir(QFileInfo(each).path()).removeRecursively());
}

TEST_F(PortableZipTest, ContainsWhatTheInstallerInstalls)
{
    QStringList files = filesBelow(package("payload"));
    files.replaceInStrings(package("payload"), unpackedZip());
    files += {unpackedZip() + "/register.cmd", unpackedZip() + "/unregister.cmd"};
    files.sort();
    EXPECT_EQ(filesBelow(unpackedZip()), files);
}

} // namespace
} // namespace zr::test
