// SPDX-License-Identifier: MIT
// Linked into test programs that need the server registered.

#include "tests/shell/server_dll.h"

#include <gtest/gtest.h>

namespace zr::test
{
namespace
{

class RegisteredServer : public ::testing::Environment
{
public:
    void SetUp() override { ASSERT_EQ(ServerDll().registerServer(), S_OK); }
    void TearDown() override { EXPECT_EQ(ServerDll().unregisterServer(), S_OK); }
};

const auto* const kRegisteredServer = ::testing::AddGlobalTestEnvironment(new RegisteredServer);

} // namespace
} // namespace zr::test
