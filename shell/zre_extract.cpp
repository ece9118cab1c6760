// SPDX-License-Identifier: MIT
#include "shell/zre_extract.h"

#include "core/log_file.h"
#include "shell/host_state.h"

#include <QtGlobal>

#include <new>

#include <qt_windows.h>

// Qt exports this conversion, without a public header, for its own extras module and others like us.
Q_GUI_EXPORT HBITMAP qt_imageToWinHBITMAP(const QImage& image, int hbitmapFormat = 0);

namespace zr
{
namespace
{

// 32 bits per pixel with the alpha channel, not premultiplied.
constexpr int kHBitmapAlpha = 2;

// Qt's messages are of no use in the host's output, and the log is for the results of requests.
void toDebugger(QtMsgType, const QMessageLogContext&, const QString& message)
{
    OutputDebugStringW(reinterpret_cast<LPCWSTR>((QLatin1String("ZRThumbnail: ") + message).utf16()));
}

void silenceQt()
{
    qInstallMessageHandler(toDebugger);
}

} // namespace

HRESULT CZReExtract::create(IUnknown* outer, REFIID iid, void** object)
{
    auto* const extractor = new (std::nothrow) CZReExtract(outer);
    if (!extractor)
        return E_OUTOFMEMORY;
    const HRESULT result = extractor->m_inner.QueryInterface(iid, object);
    extractor->m_inner.Release();
    return result;
}

CZReExtract::CZReExtract(IUnknown* outer) : m_inner(*this), m_outer(outer ? outer : &m_inner) {}

HRESULT CZReExtract::Inner::QueryInterface(REFIID iid, void** object)
{
    if (!object)
        return E_POINTER;
    *object = nullptr;
    IUnknown* found = nullptr;
    if (iid == __uuidof(IUnknown))
        found = this;
    else if (iid == __uuidof(IPersistFile))
        found = static_cast<IPersistFile*>(&m_owner);
    else if (iid == __uuidof(IExtractImage))
        found = static_cast<IExtractImage*>(&m_owner);
    else if (iid == __uuidof(IExtractImage2))
        found = static_cast<IExtractImage2*>(&m_owner);
    else
        return E_NOINTERFACE;
    found->AddRef();
    *object = found;
    return S_OK;
}

ULONG CZReExtract::Inner::AddRef()
{
    return ++m_references;
}

ULONG CZReExtract::Inner::Release()
{
    const ULONG left = --m_references;
    if (left == 0)
        delete &m_owner;
    return left;
}

HRESULT CZReExtract::QueryInterface(REFIID iid, void** object)
{
    return m_outer->QueryInterface(iid, object);
}

ULONG CZReExtract::AddRef()
{
    return m_outer->AddRef();
}

ULONG CZReExtract::Release()
{
    return m_outer->Release();
}

HRESULT CZReExtract::GetClassID(CLSID*)
{
    return E_NOTIMPL;
}

HRESULT CZReExtract::IsDirty()
{
    return E_NOTIMPL;
}

// An exception that crossed into the file browser would end it.
HRESULT CZReExtract::Load(LPCOLESTR path, DWORD)
{
    const HostState hostState;
    try {
        keepModuleLoaded();
        silenceQt();
        return m_extractor.load(QString::fromWCharArray(path)) ? S_OK : S_FALSE;
    } catch (...) {
        return S_FALSE;
    }
}

HRESULT CZReExtract::Save(LPCOLESTR, BOOL)
{
    return E_NOTIMPL;
}

HRESULT CZReExtract::SaveCompleted(LPCOLESTR)
{
    return E_NOTIMPL;
}

HRESULT CZReExtract::GetCurFile(LPOLESTR*)
{
    return E_NOTIMPL;
}

HRESULT CZReExtract::GetLocation(LPWSTR, DWORD, DWORD*, const SIZE*, DWORD, DWORD* flags)
{
    return flags && (*flags & IEIFLAG_ASYNC) ? E_PENDING : S_OK;
}

HRESULT CZReExtract::Extract(HBITMAP* bitmap)
{
    const HostState hostState;
    HBITMAP result = nullptr;
    try {
        silenceQt();
        // Cached pictures with few colours would become bitmaps with fewer bits per pixel.
        const QImage picture = m_extractor.extract().convertToFormat(QImage::Format_ARGB32);
        if (bitmap)
            result = qt_imageToWinHBITMAP(picture, kHBitmapAlpha);
    } catch (...) {
        LogFile::end(); // as after every other Extract
    }
    if (bitmap)
        *bitmap = result;
    return S_OK;
}

// INVALID_HANDLE_VALUE is not a failure here: callers have always got S_OK and a zero stamp for a file that is gone.
HRESULT CZReExtract::GetDateStamp(FILETIME* stamp)
{
    if (!stamp)
        return E_FAIL;
    const auto* const path = reinterpret_cast<LPCWSTR>(m_extractor.filePath().utf16());
    auto* const file =
        CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (!file)
        return E_FAIL;
    FILETIME creation = {};
    FILETIME lastAccess = {};
    FILETIME lastWrite = {};
    GetFileTime(file, &creation, &lastAccess, &lastWrite);
    CloseHandle(file);
    *stamp = lastWrite;
    return S_OK;
}

} // namespace zr
