// SPDX-License-Identifier: MIT
// The version and the icon that each program shows in the file browser.

#include "tests/packaging/installer_fixture.h"
#include "tests/support/qt_printers.h"

#include <QDir>

#include <vector>

namespace zr::test
{
namespace
{

class ProgramResourcesTest : public InstallerFixture
{
protected:
    static QStringList programs()
    {
        return {kInstallFolder + "/zrthumb.exe", kInstallFolder + "/uninstall.exe", setup()};
    }
};

// RT_GROUP_ICON, which the headers define for the other character type.
const LPCWSTR kIconGroup = MAKEINTRESOURCEW(14);

QString versionText(const QString& path, const wchar_t* name)
{
    const QString native = QDir::toNativeSeparators(path);
    const auto* const file = reinterpret_cast<LPCWSTR>(native.utf16());
    std::vector<char> block(GetFileVersionInfoSizeW(file, nullptr));
    if (block.empty() || !GetFileVersionInfoW(file, 0, static_cast<DWORD>(block.size()), block.data()))
        return "no version resource";
    struct Translation {
        WORD language, codePage;
    }* translation = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(block.data(), L"\\VarFileInfo\\Translation", reinterpret_cast<void**>(&translation), &size))
        return "no translation";
    const QString key = QString("\\StringFileInfo\\%1%2\\%3")
                            .arg(translation->language, 4, 16, QChar('0'))
                            .arg(translation->codePage, 4, 16, QChar('0'))
                            .arg(QString::fromWCharArray(name));
    wchar_t* text = nullptr;
    if (!VerQueryValueW(block.data(), reinterpret_cast<LPCWSTR>(key.utf16()), reinterpret_cast<void**>(&text), &size))
        return "no such text";
    return QString::fromWCharArray(text);
}

// An icon's resource begins like an .ico file, with 14 bytes for each size; 0 means 256.
QList<int> iconSizes(const QString& path)
{
    const QString native = QDir::toNativeSeparators(path);
    auto* const module = LoadLibraryExW(reinterpret_cast<LPCWSTR>(native.utf16()), nullptr, LOAD_LIBRARY_AS_DATAFILE);
    QList<int> sizes;
    const auto readGroup = [](HMODULE from, LPCWSTR type, LPWSTR name, LONG_PTR list) -> BOOL {
        const auto* const bytes =
            static_cast<const BYTE*>(LockResource(LoadResource(from, FindResourceW(from, name, type))));
        const int count = bytes[4] + bytes[5] * 256;
        for (int i = 0; i < count; ++i)
            *reinterpret_cast<QList<int>*>(list) += bytes[6 + 14 * i] ? bytes[6 + 14 * i] : 256;
        return FALSE; // the first one is what shows
    };
    EnumResourceNamesW(module, kIconGroup, readGroup, reinterpret_cast<LONG_PTR>(&sizes));
    FreeLibrary(module);
    return sizes;
}

TEST_F(ProgramResourcesTest, EachProgramHasTheVersionAndTheIcon)
{
    ASSERT_EQ(install(setup()), 0);
    for (const QString& program : programs()) {
        SCOPED_TRACE(program.toStdString());
        EXPECT_EQ(versionText(program, L"FileVersion"), ZRTHUMB_VERSION);
        EXPECT_EQ(versionText(program, L"ProductVersion"), ZRTHUMB_VERSION);
        EXPECT_EQ(versionText(program, L"ProductName"), "ZRThumbnail");
        EXPECT_EQ(iconSizes(program), QList<int>({16, 32, 48, 256}));
    }
    EXPECT_EQ(iconSizes(kInstallFolder + "/uninstaller.exe"), QList<int>({16, 32, 48, 256}));
    EXPECT_EQ(versionText(kInstallFolder + "/zrthumb.exe", L"OriginalFilename"), "zrthumb.exe");
    EXPECT_EQ(versionText(kInstallFolder + "/uninstall.exe", L"OriginalFilename"), "uninstall.exe");
    uninstall();
}

} // namespace
} // namespace zr::test
