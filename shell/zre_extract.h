// SPDX-License-Identifier: MIT
#pragma once

#include "request/thumbnail_extractor.h"
#include "shell/module.h"

#include <atomic>

#include <shobjidl.h>

namespace zr
{

/// The object that the file browser makes for one file: it hands over the file's path with IPersistFile::Load and takes
/// the picture with IExtractImage::Extract. Thin on top of ThumbnailExtractor; each object is used on one thread.
///
/// It can be part of an outer object. Its own count of references then belongs to the inner IUnknown that create()
/// hands to the outer object, and its interfaces send their IUnknown calls to the outer object.
class CZReExtract final : public IPersistFile, public IExtractImage2
{
public:
    /// Makes an object and asks it for `iid`; with an outer object, `iid` has to be IUnknown.
    static HRESULT create(IUnknown* outer, REFIID iid, void** object);

    Q_DISABLE_COPY(CZReExtract)

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;

    HRESULT STDMETHODCALLTYPE GetClassID(CLSID* classId) override;
    HRESULT STDMETHODCALLTYPE IsDirty() override;
    /// S_OK when the file's thumbnail is in the cache, else S_FALSE. `mode` is ignored.
    HRESULT STDMETHODCALLTYPE Load(LPCOLESTR path, DWORD mode) override;
    HRESULT STDMETHODCALLTYPE Save(LPCOLESTR path, BOOL remember) override;
    HRESULT STDMETHODCALLTYPE SaveCompleted(LPCOLESTR path) override;
    HRESULT STDMETHODCALLTYPE GetCurFile(LPOLESTR* path) override;

    /// E_PENDING when the caller offers to wait in the background, else S_OK. Size and depth are ignored, and nothing
    /// is written back.
    HRESULT STDMETHODCALLTYPE GetLocation(LPWSTR path, DWORD pathLength, DWORD* priority, const SIZE* size, DWORD depth,
                                          DWORD* flags) override;
    /// Always S_OK; a null bitmap when there is no thumbnail. The caller owns the bitmap.
    HRESULT STDMETHODCALLTYPE Extract(HBITMAP* bitmap) override;
    /// The loaded file's time of last write.
    HRESULT STDMETHODCALLTYPE GetDateStamp(FILETIME* stamp) override;

private:
    // The object's own IUnknown, which never delegates.
    class Inner final : public IUnknown
    {
    public:
        explicit Inner(CZReExtract& owner) : m_owner(owner) {}
        HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override;
        ULONG STDMETHODCALLTYPE AddRef() override;
        ULONG STDMETHODCALLTYPE Release() override;

    private:
        CZReExtract& m_owner;
        std::atomic<ULONG> m_references{1};
    };

    explicit CZReExtract(IUnknown* outer);
    ~CZReExtract() = default;

    ModuleLock m_moduleLock;
    Inner m_inner;
    IUnknown* m_outer; ///< answers IUnknown calls: the outer object, which is not counted, or m_inner
    ThumbnailExtractor m_extractor;
};

} // namespace zr
