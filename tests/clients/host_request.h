// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <windows.h>

namespace zr::test
{

/// A picture as a host gets it; the width is 0 if there is none.
struct HostPicture {
    LONG width = 0;
    LONG height = 0;
    unsigned long hash = 0; ///< of the pixels
};

/// The thumbnail server, loaded as COM loads it while the object lives.
class HostServer
{
public:
    explicit HostServer(const std::string& path);
    ~HostServer();
    HostServer(const HostServer&) = delete;
    HostServer& operator=(const HostServer&) = delete;

    static bool isLoaded();

    /// Makes an object and releases it.
    void makeObject() const;

    /// The picture of the file, requested as by the file browser.
    HostPicture request(const std::string& path) const;

private:
    HMODULE m_module;
};

} // namespace zr::test
