// SPDX-License-Identifier: MIT
#include "host/thumbnail_client.h"

#include "cache/thumbnail_database.h"
#include "core/job/thumbnail_job.h"
#include "core/request_log.h"
#include "host/bitmap_to_image.h"
#include "host/log_tail.h"
#include "host/reader_client.h"
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

// Of the job that the reader serves.
QStringList jobsLines(const QString& path, const QStringList& messages)
{
    QStringList lines;
    for (const FailureLine& line : FailureLines{kNoPicture, kDatabaseNotOpen, kTableNotMade, kNotSaved, kJobFailed}) {
        if (RequestLog(asLogged(path), messages).has(line))
            lines += QStringLiteral("%1 ").arg(line.number) + textOf(line, path);
    }
    return lines;
}

// What the reader logs for the file when it reads it again, here. Empty when it makes a picture.
QStringList readersLines(const QString& path)
{
    ReaderClient reader;
    try {
        return reader.load(path) ? QStringList() : reader.messages(path);
    } catch (const std::exception&) {
        return reader.messages(path);
    }
}

class ComClient final : public ThumbnailClient
{
public:
    explicit ComClient(ComPtr<IPersistFile> object) : m_object(std::move(object)) {}

    bool load(const QString& path) override
    {
        return m_object->Load(reinterpret_cast<LPCOLESTR>(path.utf16()), STGM_READ) == S_OK;
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

    // Between other processes' lines, those of the reader cannot be told from theirs.
    QStringList messages(const QString& path) const override
    {
        const QStringList logged = m_log.messagesOf(path);
        if (!othersLog)
            return logged;
        const QStringList readers = readersLines(path);
        return readers.isEmpty() ? jobsLines(path, logged) : readers;
    }

private:
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
