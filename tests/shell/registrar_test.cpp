// SPDX-License-Identifier: MIT
#include "shell/registrar.h"

#include "tests/shell/registry_dump.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

constexpr wchar_t kPlayground[] = L"Software\\ZRThumbnail registrar test";

// HKEY_CLASSES_ROOT is mapped to an empty key of this test.
class RegistrarTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        removeTree(HKEY_CURRENT_USER, kPlayground);
        ASSERT_EQ(RegCreateKeyExW(HKEY_CURRENT_USER, kPlayground, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &m_classes,
                                  nullptr),
                  ERROR_SUCCESS);
        ASSERT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, m_classes), ERROR_SUCCESS);
    }

    void TearDown() override
    {
        EXPECT_EQ(RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr), ERROR_SUCCESS);
        RegCloseKey(m_classes);
        removeTree(HKEY_CURRENT_USER, kPlayground);
    }

    static std::vector<RegistryBranch> script(const std::wstring& text)
    {
        auto parsed = parseRegistryScript(text, {{L"MODULE", L"C:\\new.dll"}});
        EXPECT_TRUE(parsed);
        return parsed.value_or(std::vector<RegistryBranch>());
    }

    RegistryLines written() const { return registryBelow(m_classes); }

    // Windows refuses to create permanent keys below a volatile one.
    void makeVolatileKey(const std::wstring& path) const
    {
        HKEY key = nullptr;
        ASSERT_EQ(RegCreateKeyExW(m_classes, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_WRITE, nullptr, &key,
                                  nullptr),
                  ERROR_SUCCESS);
        RegCloseKey(key);
    }

    HKEY m_classes = nullptr;
};

constexpr HRESULT kChildMustBeVolatile = static_cast<HRESULT>(0x800703FD);

TEST_F(RegistrarTest, WritesKeysAndValues)
{
    const auto keys = script(L"HKCR { A = s 'it''s %MODULE%' { val Number = d 258 val Empty = s '' {B} } NoRemove C }");
    EXPECT_EQ(registerScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"A", L"A =\"it's C:\\new.dll\"", L"A Empty=\"\"", L"A Number=4:02010000",
                                        L"A\\{B}", L"C"}));
}

TEST_F(RegistrarTest, ForceRemoveClearsTheKeyFirst)
{
    writeString(m_classes, L"A\\Old\\Deep", L"", L"x");
    writeString(m_classes, L"A", L"Name", L"x");
    writeString(m_classes, L"B\\Old", L"", L"x");
    EXPECT_EQ(registerScript(script(L"HKCR { ForceRemove A { New } B { New } }")), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"A", L"A\\New", L"B", L"B\\New", L"B\\Old", L"B\\Old =\"x\""}));
}

TEST_F(RegistrarTest, OverwritesValues)
{
    writeString(m_classes, L"A", L"", L"old");
    writeString(m_classes, L"A", L"Name", L"old");
    EXPECT_EQ(registerScript(script(L"HKCR { NoRemove A = s 'new' { val Name = d 1 } }")), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"A", L"A =\"new\"", L"A Name=4:01000000"}));
}

TEST_F(RegistrarTest, UnregisteringRemovesAllButNoRemoveKeys)
{
    const auto keys = script(L"HKCR { A = s 'a' { B { C = s 'c' } } NoRemove N { val V = s 'v' D { E } } "
                             L"NoRemove M { ForceRemove F { G } } }");
    ASSERT_EQ(registerScript(keys), S_OK);
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"M", L"N"}));
}

TEST_F(RegistrarTest, UnregisteringLeavesKeysOfOtherPrograms)
{
    const auto keys = script(L"HKCR { A = s 'a' { val V = s 'v' B = s 'b' } NoRemove N { shellex { {1} = s 'x' } } }");
    ASSERT_EQ(registerScript(keys), S_OK);
    writeString(m_classes, L"A\\Theirs", L"", L"t");
    writeString(m_classes, L"N\\shellex\\{2}", L"", L"t");
    writeString(m_classes, L"N", L"", L"t");
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"A", L"A\\Theirs", L"A\\Theirs =\"t\"", L"N", L"N =\"t\"", L"N\\shellex",
                                        L"N\\shellex\\{2}", L"N\\shellex\\{2} =\"t\""}));
}

TEST_F(RegistrarTest, UnregisteringForceRemoveKeysRemovesEverything)
{
    const auto keys = script(L"HKCR { ForceRemove A = s 'a' { B } }");
    ASSERT_EQ(registerScript(keys), S_OK);
    writeString(m_classes, L"A\\Theirs\\Deep", L"", L"t");
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines());
}

TEST_F(RegistrarTest, UnregisteringMissingKeysSucceeds)
{
    const auto keys = script(L"HKCR { A = s 'a' { B } ForceRemove C NoRemove D { E { val F = s 'f' } } }");
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines());
    ASSERT_EQ(registerScript(keys), S_OK);
    removeTree(m_classes, L"A\\B");
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"D"}));
}

TEST_F(RegistrarTest, RegisteringTwiceChangesNothing)
{
    const auto keys = script(L"HKCR { A = s 'a' { B = s 'b' } NoRemove C { ForceRemove D = s 'd' { val E = d 5 } } }");
    ASSERT_EQ(registerScript(keys), S_OK);
    const RegistryLines once = written();
    EXPECT_EQ(registerScript(keys), S_OK);
    EXPECT_EQ(written(), once);
}

TEST_F(RegistrarTest, FirstFailureEndsTheRegistrationAndUndoesIt)
{
    makeVolatileKey(L"Stubborn");
    writeString(m_classes, L"N\\Theirs", L"", L"t");
    const auto keys = script(L"HKCR { A = s 'a' { B } NoRemove N { C = s 'c' } NoRemove Stubborn { D } Last }");
    EXPECT_EQ(registerScript(keys), kChildMustBeVolatile);
    EXPECT_EQ(written(), RegistryLines({L"N", L"N\\Theirs", L"N\\Theirs =\"t\"", L"Stubborn"}));
}

TEST_F(RegistrarTest, FirstFailureIsReported)
{
    makeVolatileKey(L"Stubborn");
    // Too long for the name of a key.
    const std::wstring tooLong(300, L'x');
    HKEY key = nullptr;
    const LSTATUS refusal =
        RegCreateKeyExW(m_classes, tooLong.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key, nullptr);
    ASSERT_NE(refusal, ERROR_SUCCESS);
    EXPECT_EQ(registerScript(script(L"HKCR { A NoRemove Stubborn { B } " + tooLong + L" }")), kChildMustBeVolatile);
    EXPECT_EQ(registerScript(script(L"HKCR { A " + tooLong + L" NoRemove Stubborn { B } }")),
              HRESULT_FROM_WIN32(static_cast<DWORD>(refusal)));
    EXPECT_EQ(written(), RegistryLines({L"Stubborn"}));
}

TEST_F(RegistrarTest, OtherRootsWork)
{
    const auto keys = script(L"HKCU { NoRemove Software { 'ZRThumbnail registrar test' { Mine } } }");
    EXPECT_EQ(registerScript(keys), S_OK);
    writeKey(m_classes, L"Theirs");
    EXPECT_EQ(written(), RegistryLines({L"Mine", L"Theirs"}));
    EXPECT_EQ(unregisterScript(keys), S_OK);
    EXPECT_EQ(written(), RegistryLines({L"Theirs"}));
    EXPECT_TRUE(keyExists(HKEY_CURRENT_USER, L"Software"));
}

} // namespace
} // namespace zr::test
