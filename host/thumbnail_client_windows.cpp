// SPDX-License-Identifier: MIT
#include "host/thumbnail_client.h"

#include "host/bitmap_to_image.h"
#include "host/log_tail.h"
#include "host/log_turn.h"
#include "request/server_class.h"

#include <QDir>
#include <QFileInfo>

#include <stdexcept>

#include <shobjidl.h>
#include <wrl/client.h>

namespace zr
{
namespace
{

using Microsoft::WRL::ComPtr;

std::runtime_error failure(const QString& sentence)
{
    return std::runtime_error(sentence.toLocal8Bit().toStdString());
}

// Lasts until the process ends, as the server does.
void startCom()
{
    static const HRESULT result = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (FAILED(result))
        throw failure(QStringLiteral("COM does not start"));
}

CLSID serverClass()
{
    CLSID id = {};
    CLSIDFromString(reinterpret_cast<LPCOLESTR>(QString(QLatin1String(kServerClassId)).utf16()), &id);
    return id;
}

ComPtr<IClassFactory> factoryOfDll(const QString& path)
{
    using GetClassObject = HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**);
    const QString absolutePath = QDir::toNativeSeparators(QFileInfo(path).absoluteFilePath());
    // Finds the DLLs beside this one, as COM does. Never unloaded, since Qt runs in it.
    auto* const module =
        LoadLibraryExW(reinterpret_cast<LPCWSTR>(absolutePath.utf16()), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!module)
        throw failure(QStringLiteral("the DLL %1 cannot be loaded").arg(absolutePath));
    const auto entry = GetProcAddress(module, "DllGetClassObject");
    const auto getClassObject = reinterpret_cast<GetClassObject>(reinterpret_cast<void*>(entry));
    ComPtr<IClassFactory> factory;
    if (!getClassObject || FAILED(getClassObject(serverClass(), IID_PPV_ARGS(factory.GetAddressOf()))))
        throw failure(QStringLiteral("the DLL %1 is no thumbnail server").arg(absolutePath));
    return factory;
}

ComPtr<IPersistFile> makeObject(const QString& serverPath)
{
    ComPtr<IPersistFile> object;
    if (!serverPath.isEmpty()) {
        if (FAILED(factoryOfDll(serverPath)->CreateInstance(nullptr, IID_PPV_ARGS(object.GetAddressOf()))))
            throw failure(QStringLiteral("the DLL %1 makes no thumbnail object").arg(serverPath));
        return object;
    }
    const HRESULT result =
        CoCreateInstance(serverClass(), nullptr, CLSCTX_INPROC_SERVER, IID_PPV_ARGS(object.GetAddressOf()));
    if (result == REGDB_E_CLASSNOTREG)
        throw failure(
            QStringLiteral("the thumbnail server is not registered: run the installer or register.cmd, or name "
                           "it with --dll"));
    if (FAILED(result))
        throw failure(QStringLiteral("the registered thumbnail server does not start (error 0x%1)")
                          .arg(static_cast<quint32>(result), 8, 16, QLatin1Char('0')));
    return object;
}

bool othersLog = false;

class ComClient final : public ThumbnailClient
{
public:
    explicit ComClient(ComPtr<IPersistFile> object) : m_object(std::move(object)) {}

    bool load(const QString& path) override
    {
        const auto turn = othersLog ? std::make_unique<LogTurn>(LogTurn::Company::Any) : nullptr;
        return request(path);
    }

    // Between other processes' lines, those of this request cannot be told from theirs, so it is made once more, alone.
    QStringList messages(const QString& path) const override
    {
        if (!othersLog)
            return m_log.messagesOf(path);
        const LogTurn turn(LogTurn::Company::None);
        const LogTail log;
        request(path);
        return log.messagesOf(path);
    }

    QImage extract() override
    {
        ComPtr<IExtractImage> extractor;
        if (FAILED(m_object.As(&extractor)))
            return {};
        wchar_t location[MAX_PATH] = {};
        DWORD priority = 0;
        const SIZE size = {256, 256};
        DWORD flags = 0;
        HBITMAP bitmap = nullptr;
        if (FAILED(extractor->GetLocation(location, MAX_PATH, &priority, &size, 32, &flags)) ||
            FAILED(extractor->Extract(&bitmap)) || !bitmap)
            return {};
        QImage image = bitmapToImage(bitmap);
        DeleteObject(bitmap);
        return image;
    }

private:
    bool request(const QString& path) const
    {
        return m_object->Load(reinterpret_cast<LPCOLESTR>(path.utf16()), STGM_READ) == S_OK;
    }

    LogTail m_log;
    ComPtr<IPersistFile> m_object;
};

} // namespace

bool talksToServer()
{
    return true;
}

void expectOthersInLog()
{
    othersLog = true;
}

std::unique_ptr<ThumbnailClient> makeThumbnailClient(const QString& serverPath, DataFolderUse)
{
    startCom();
    return std::make_unique<ComClient>(makeObject(serverPath));
}

} // namespace zr
