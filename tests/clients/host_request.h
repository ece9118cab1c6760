#pragma once

#include <string>

#include <windows.h>

namespace zr::test
{

/// A picture as a host gets it; no width when there is none.
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

    /// Makes an object and lets it go again.
    void makeObject() const;

    /// The picture of the file, asked for as the file browser does it.
    HostPicture request(const std::string& path) const;

private:
    HMODULE m_module;
};

} // namespace zr::test
