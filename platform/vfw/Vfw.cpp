#include "platform/vfw/Vfw.h"

#include <memory>

#include "platform/vfw/InstalledCodecs.h"
#include "platform/vfw/StockCodec.h"

// An open codec: who answers, and the number that it wants to be called by.
struct OpenCodec {
    DRIVERPROC codec;
    DWORD_PTR id;
};

namespace {

LRESULT Tell(DRIVERPROC codec, UINT message) {
    return codec(0, nullptr, message, 0, 0);
}

void Unload(DRIVERPROC codec) {
    Tell(codec, DRV_DISABLE);
    Tell(codec, DRV_FREE);
}

// What the codec answers to DRV_OPEN; 0 where it refuses.
DWORD_PTR Start(DRIVERPROC codec, DWORD type, DWORD handler, UINT mode) {
    ICOPEN request{};
    request.dwSize = sizeof request;
    request.fccType = type;
    request.fccHandler = handler;
    request.dwFlags = mode;
    return static_cast<DWORD_PTR>(
        codec(0, nullptr, DRV_OPEN, 0, reinterpret_cast<LPARAM>(&request)));
}

} // namespace

HIC ICOpen(DWORD type, DWORD handler, UINT mode) {
    if (type != ICTYPE_VIDEO || mode != ICMODE_DECOMPRESS) {
        return nullptr;
    }
    const DRIVERPROC installed = vfw::FindInstalled(handler);
    const DRIVERPROC codec = installed != nullptr ? installed : vfw::StockCodec;
    auto open = std::make_unique<OpenCodec>(OpenCodec{codec, 0});
    if (Tell(codec, DRV_LOAD) == 0) {
        return nullptr;
    }
    Tell(codec, DRV_ENABLE);
    open->id = Start(codec, type, handler, mode);
    if (open->id == 0) {
        Unload(codec);
        return nullptr;
    }
    return open.release();
}

LRESULT ICSendMessage(HIC codec, UINT message, DWORD_PTR parameter1, DWORD_PTR parameter2) {
    if (codec == nullptr) {
        return ICERR_BADHANDLE;
    }
    return codec->codec(codec->id, nullptr, message, static_cast<LPARAM>(parameter1),
                        static_cast<LPARAM>(parameter2));
}

DWORD ICDecompress(HIC codec, DWORD flags, BITMAPINFOHEADER* input, void* data,
                   BITMAPINFOHEADER* output, void* bits) {
    ICDECOMPRESS picture{flags, input, data, output, bits, 0};
    return static_cast<DWORD>(ICSendMessage(codec, ICM_DECOMPRESS,
                                            reinterpret_cast<DWORD_PTR>(&picture), sizeof picture));
}

LRESULT ICClose(HIC codec) {
    if (codec == nullptr) {
        return ICERR_BADHANDLE;
    }
    const std::unique_ptr<OpenCodec> open(codec);
    open->codec(open->id, nullptr, DRV_CLOSE, 0, 0);
    Unload(open->codec);
    return ICERR_OK;
}

LRESULT ICGetInfo(HIC codec, ICINFO* info, DWORD size) {
    return codec == nullptr
               ? 0
               : ICSendMessage(codec, ICM_GETINFO, reinterpret_cast<DWORD_PTR>(info), size);
}

BOOL ICInstall(DWORD type, DWORD handler, LPARAM function, const char*, UINT flags) {
    if (type != ICTYPE_VIDEO || flags != ICINSTALL_FUNCTION || function == 0) {
        return FALSE;
    }
    vfw::Install(handler, reinterpret_cast<DRIVERPROC>(function)); // NOLINT(*-int-to-ptr)
    return TRUE;
}

BOOL ICRemove(DWORD type, DWORD handler, UINT) {
    return type == ICTYPE_VIDEO && vfw::Remove(handler) ? TRUE : FALSE;
}
