// SPDX-License-Identifier: MIT
#pragma once

#include "tests/shell/server_dll.h"
#include "tests/support/data_folder_fixture.h"

#include <QImage>
#include <QTemporaryDir>

#include <shobjidl.h>

namespace zr::test
{

/// The bytes of the sample file of this name; the test fails when there is none.
QByteArray sampleBytes(const char* name);

/// A test that makes requests as a client of the server. It starts with an empty data folder and no open log.
class ServerTest : public DataFolderTest
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Path of a new file in the test's own folder, as the file browser writes it.
    QString writeSource(const QString& name, const QByteArray& bytes) const;

    /// The result of Load for a path.
    static HRESULT load(const ComPtr<IPersistFile>& object, const QString& path);

    /// The bitmap that Extract returns, as an image; null if there is none. Frees the bitmap.
    static QImage extract(const ComPtr<IPersistFile>& object);

    /// Load and Extract on a new object.
    QImage request(const QString& path) const;

    /// The text as the log has it in its code page.
    static QString inCodePage(const QString& text);

    Apartment m_apartment;
    ServerDll m_server;
    QTemporaryDir m_folder;
};

} // namespace zr::test
