// SPDX-License-Identifier: MIT
// What regsvr32 and the two exports that it calls do to the registry.

#include "core/data_location.h"
#include "tests/shell/registry_dump.h"
#include "tests/shell/server_dll.h"
#include "tests/support/qt_printers.h"
#include "tests/support/registered_suffixes.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>

#include <gtest/gtest.h>

#include <oleauto.h>
#include <shobjidl.h>

namespace zr::test
{
namespace
{

constexpr GUID kLibraryId = {0xF473925C, 0xFDEE, 0x42AD, {0x9F, 0xC2, 0xC8, 0x43, 0xDB, 0x7B, 0xA2, 0xB2}};

const std::wstring kClass = L"CLSID\\{E45A903D-53AE-4A14-906E-0260D13FF77F}";
const std::wstring kLibrary = L"TypeLib\\{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}";
const std::wstring kInterface = L"Interface\\{9EFBFC7F-30FC-40F7-A73A-EC5036F339B9}";
const std::wstring kHandler = L"shellex\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}";

constexpr HRESULT kChildMustBeVolatile = static_cast<HRESULT>(0x800703FD);

// Every key and value to be written for the DLL at this path, except the type library's.
RegistryLines expectedEntries(const std::wstring& dllPath)
{
    RegistryLines lines = {
        L"ZRThumbnail.ZReExtract.1",
        L"ZRThumbnail.ZReExtract.1 =\"ZReExtract Class\"",
        L"ZRThumbnail.ZReExtract.1\\CLSID",
        L"ZRThumbnail.ZReExtract.1\\CLSID =\"{E45A903D-53AE-4A14-906E-0260D13FF77F}\"",
        L"ZRThumbnail.ZReExtract",
        L"ZRThumbnail.ZReExtract =\"ZReExtract Class\"",
        L"ZRThumbnail.ZReExtract\\CLSID",
        L"ZRThumbnail.ZReExtract\\CLSID =\"{E45A903D-53AE-4A14-906E-0260D13FF77F}\"",
        L"ZRThumbnail.ZReExtract\\CurVer",
        L"ZRThumbnail.ZReExtract\\CurVer =\"ZRThumbnail.ZReExtract.1\"",
        kClass,
        kClass + L" =\"ZReExtract Class\"",
        kClass + L"\\ProgID",
        kClass + L"\\ProgID =\"ZRThumbnail.ZReExtract.1\"",
        kClass + L"\\VersionIndependentProgID",
        kClass + L"\\VersionIndependentProgID =\"ZRThumbnail.ZReExtract\"",
        kClass + L"\\Programmable",
        kClass + L"\\InprocServer32",
        kClass + L"\\InprocServer32 =\"" + dllPath + L"\"",
        kClass + L"\\InprocServer32 ThreadingModel=\"Apartment\"",
        kClass + L"\\TypeLib",
        kClass + L"\\TypeLib =\"{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}\"",
    };
    for (const QString& suffix : kRegisteredSuffixes) {
        std::wstring path = suffix.toStdWString();
        lines.push_back(path);
        lines.push_back(path += L"\\shellex");
        lines.push_back(path += L"\\{BB2E617C-0920-11d1-9A0B-00C04FC2D6C1}");
        lines.push_back(path += L" =\"{E45A903D-53AE-4A14-906E-0260D13FF77F}\"");
    }
    std::sort(lines.begin(), lines.end());
    return lines;
}

RegistryLines suffixKeys()
{
    RegistryLines lines;
    for (const QString& suffix : kRegisteredSuffixes)
        lines.push_back(suffix.toStdWString());
    std::sort(lines.begin(), lines.end());
    return lines;
}

// All classes in the registry except type libraries and their interfaces, whose form is up to the system.
RegistryLines classes()
{
    return registryBelow(HKEY_CLASSES_ROOT, {L"TypeLib", L"Typelib", L"Interface", L"Wow6432Node"});
}

DWORD runRegsvr32(const std::wstring& options)
{
    std::wstring commandLine = L"regsvr32.exe " + options + L" \"" + ServerDll::path() + L"\"";
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION process = {};
    EXPECT_TRUE(
        CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &process));
    EXPECT_EQ(WaitForSingleObject(process.hProcess, 60000), DWORD{WAIT_OBJECT_0});
    DWORD status = ~DWORD{0};
    GetExitCodeProcess(process.hProcess, &status);
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
    return status;
}

// No suffix is known and nothing is registered when a test starts.
class RegistrationTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_EQ(m_server.unregisterServer(), S_OK);
        forgetSuffixes();
        m_before = classes();
    }

    void TearDown() override
    {
        EXPECT_EQ(m_server.unregisterServer(), S_OK);
        forgetSuffixes();
        EXPECT_TRUE(QCoreApplication::startingUp()) << "registering needs no Qt";
        EXPECT_EQ(m_server.canUnloadNow(), S_OK);
    }

    static void forgetSuffixes()
    {
        for (const QString& suffix : kRegisteredSuffixes)
            removeTree(HKEY_CLASSES_ROOT, suffix.toStdWString());
    }

    void expectWritten(const RegistryLines& expected) const
    {
        const RegistryLines after = classes();
        const RegistryLines written = linesOnlyIn(after, m_before);
        EXPECT_EQ(linesOnlyIn(written, expected), RegistryLines()) << "more than expected";
        EXPECT_EQ(linesOnlyIn(expected, written), RegistryLines()) << "less than expected";
        EXPECT_EQ(linesOnlyIn(m_before, after), RegistryLines()) << "lost";
    }

    Apartment m_apartment;
    ServerDll m_server;
    RegistryLines m_before;
};

TEST_F(RegistrationTest, Regsvr32WritesEveryKeyAndRemovesItAgain)
{
    EXPECT_EQ(runRegsvr32(L"/s"), 0U);
    expectWritten(expectedEntries(ServerDll::path()));
    EXPECT_TRUE(keyExists(HKEY_CLASSES_ROOT, kLibrary));
    EXPECT_EQ(runRegsvr32(L"/u /s"), 0U);
    expectWritten(suffixKeys());
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, kLibrary));
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, kInterface));
}

TEST_F(RegistrationTest, RegisteringTwiceIsLikeRegisteringOnce)
{
    EXPECT_EQ(m_server.registerServer(), S_OK);
    writeString(HKEY_CLASSES_ROOT, kClass, L"Stale", L"of an older version");
    writeString(HKEY_CLASSES_ROOT, kClass + L"\\LocalServer32", L"", L"of an older version");
    writeString(HKEY_CLASSES_ROOT, kClass + L"\\InprocServer32", L"", L"C:\\elsewhere.dll");
    EXPECT_EQ(m_server.registerServer(), S_OK);
    expectWritten(expectedEntries(ServerDll::path()));
}

TEST_F(RegistrationTest, UnregisteringTwiceIsLikeUnregisteringOnce)
{
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    expectWritten({});
    EXPECT_EQ(m_server.registerServer(), S_OK);
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    expectWritten(suffixKeys());
}

TEST_F(RegistrationTest, KeysOfOtherProgramsSurvive)
{
    const std::wstring otherHandler = L".stl\\shellex\\{8895B1C6-B41F-4C1C-A562-0D564250836F}";
    writeString(HKEY_CLASSES_ROOT, L".stl", L"", L"Their.Document");
    writeString(HKEY_CLASSES_ROOT, otherHandler, L"", L"{11111111-2222-3333-4444-555555555555}");
    writeString(HKEY_CLASSES_ROOT, L".gf\\OpenWithProgids", L"Their.Document", L"");
    const RegistryLines theirs = linesOnlyIn(classes(), m_before);
    EXPECT_EQ(m_server.registerServer(), S_OK);
    EXPECT_EQ(linesOnlyIn(theirs, classes()), RegistryLines());
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    EXPECT_EQ(linesOnlyIn(theirs, classes()), RegistryLines());
    EXPECT_TRUE(keyExists(HKEY_CLASSES_ROOT, otherHandler));
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, L".stl\\" + kHandler));
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, L".gf\\shellex"));
}

// Windows refuses to create permanent keys below a volatile one.
TEST_F(RegistrationTest, FailureHalfWayIsReportedAndUndone)
{
    HKEY key = nullptr;
    ASSERT_EQ(
        RegCreateKeyExW(HKEY_CLASSES_ROOT, L".gf", 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key, nullptr),
        ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_EQ(m_server.registerServer(), kChildMustBeVolatile);
    expectWritten({L".fdg", L".gf", L".slc", L".stl", L".vrx", L".vrxdlp"});
    EXPECT_FALSE(keyExists(HKEY_CLASSES_ROOT, kLibrary)) << "the type library comes after the script";
    EXPECT_NE(runRegsvr32(L"/s"), 0U);
}

TEST_F(RegistrationTest, TypeLibraryFailureIsReported)
{
    removeTree(HKEY_CLASSES_ROOT, kLibrary);
    HKEY key = nullptr;
    ASSERT_EQ(RegCreateKeyExW(HKEY_CLASSES_ROOT, kLibrary.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr,
                              &key, nullptr),
              ERROR_SUCCESS);
    RegCloseKey(key);
    EXPECT_TRUE(FAILED(m_server.registerServer()));
    removeTree(HKEY_CLASSES_ROOT, kLibrary);
}

TEST_F(RegistrationTest, ClassIsCreatedThroughTheRegistry)
{
    ComPtr<IPersistFile> object;
    EXPECT_EQ(CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())),
              REGDB_E_CLASSNOTREG);
    ASSERT_EQ(m_server.registerServer(), S_OK);
    EXPECT_EQ(CoCreateInstance(kClassId, nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf())), S_OK);
    EXPECT_EQ(object->IsDirty(), E_NOTIMPL);
    for (const wchar_t* const programId : {L"ZRThumbnail.ZReExtract", L"ZRThumbnail.ZReExtract.1"}) {
        CLSID classId = {};
        EXPECT_EQ(CLSIDFromProgID(programId, &classId), S_OK);
        EXPECT_EQ(classId, kClassId);
    }
    object.Reset();
    CoFreeUnusedLibraries();
}

TEST_F(RegistrationTest, TypeLibraryIsFoundThroughTheRegistry)
{
    ASSERT_EQ(m_server.registerServer(), S_OK);
    const std::wstring path = ServerDll::path();
    EXPECT_EQ(defaultValue(HKEY_CLASSES_ROOT, kLibrary + L"\\1.0"), L"ZRThumbnail 1.0 Type Library");
    EXPECT_EQ(defaultValue(HKEY_CLASSES_ROOT, kLibrary + L"\\1.0\\0\\win64"), path);
    EXPECT_EQ(defaultValue(HKEY_CLASSES_ROOT, kLibrary + L"\\1.0\\HELPDIR"), path.substr(0, path.rfind(L'\\') + 1));
    EXPECT_EQ(defaultValue(HKEY_CLASSES_ROOT, kInterface), L"IZReExtract");
    EXPECT_EQ(defaultValue(HKEY_CLASSES_ROOT, kInterface + L"\\TypeLib"), L"{F473925C-FDEE-42AD-9FC2-C843DB7BA2B2}");
    ComPtr<ITypeLib> library;
    EXPECT_EQ(LoadRegTypeLib(kLibraryId, 1, 0, 0, &library), S_OK);
    library.Reset();
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    EXPECT_TRUE(FAILED(LoadRegTypeLib(kLibraryId, 1, 0, 0, &library)));
}

// The path is inserted into the script, where a quote, a per cent sign or a keyword would have a meaning.
TEST_F(RegistrationTest, PathOfTheDllMayContainAnyLetters)
{
    const QTemporaryDir folder;
    const QString odd = QDir(folder.path()).filePath(QString::fromUtf8("it's 100%MODULE% { val } \u0142\u00f3\u017c"));
    ASSERT_TRUE(QDir().mkpath(odd));
    const QString copy = QDir::toNativeSeparators(odd + "/ZRThumbnail.dll");
    ASSERT_TRUE(QFile::copy(QString::fromStdWString(ServerDll::path()), copy));
    auto* const module = LoadLibraryW(reinterpret_cast<LPCWSTR>(copy.utf16()));
    ASSERT_TRUE(module);
    const auto call = [module](const char* name) {
        auto* const address = reinterpret_cast<void*>(GetProcAddress(module, name));
        return reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(address)();
    };
    EXPECT_EQ(call("DllRegisterServer"), S_OK);
    expectWritten(expectedEntries(copy.toStdWString()));
    EXPECT_EQ(call("DllUnregisterServer"), S_OK);
    expectWritten(suffixKeys());
    FreeLibrary(module);
}

TEST_F(RegistrationTest, DataFolderIsNotTouched)
{
    ASSERT_TRUE(QDir(dataFolder()).removeRecursively());
    EXPECT_EQ(m_server.registerServer(), S_OK);
    EXPECT_EQ(m_server.unregisterServer(), S_OK);
    EXPECT_FALSE(QDir(dataFolder()).exists());
}

} // namespace
} // namespace zr::test
