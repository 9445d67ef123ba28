#include "tests/support/ScriptedCodec.h"

#include <map>

namespace {

std::map<DWORD, ScriptedCodec*>& Installed() {
    static std::map<DWORD, ScriptedCodec*> installed;
    return installed;
}

std::string TextOf(const BITMAPINFOHEADER& format) {
    return std::to_string(format.biBitCount) + ' ' + std::to_string(format.biWidth) + 'x' +
           std::to_string(format.biHeight) + " (" + std::to_string(format.biSizeImage) + ')';
}

template <typename T>
T& As(std::intptr_t parameter) {
    return *reinterpret_cast<T*>(parameter); // NOLINT(performance-no-int-to-ptr)
}

std::string TextOf(LPARAM input, LPARAM output) {
    return TextOf(As<const BITMAPINFOHEADER>(input)) + " -> " +
           TextOf(As<const BITMAPINFOHEADER>(output));
}

} // namespace

ScriptedCodec::ScriptedCodec(DWORD handler)
    : m_handler(handler) {
    Installed()[handler] = this;
    ICInstall(ICTYPE_VIDEO, m_handler, reinterpret_cast<LPARAM>(&Answer), nullptr,
              ICINSTALL_FUNCTION);
}

ScriptedCodec::~ScriptedCodec() {
    ICRemove(ICTYPE_VIDEO, m_handler, 0);
    Installed().erase(m_handler);
}

LRESULT ScriptedCodec::Answer(DWORD_PTR id, HDRVR, UINT message, LPARAM first, LPARAM second) {
    if (message == DRV_OPEN) {
        return Open(As<const ICOPEN>(second).fccHandler);
    }
    if (id == 0) {
        return 1; // to be loaded or let go
    }
    auto& codec = As<ScriptedCodec>(static_cast<LPARAM>(id));
    switch (message) {
    case DRV_CLOSE:
        codec.calls.emplace_back("close");
        return 1;
    case ICM_DECOMPRESS_QUERY:
        return codec.Query(first, second);
    case ICM_DECOMPRESS_BEGIN:
        return codec.Begin(first, second);
    case ICM_DECOMPRESS_END:
        codec.calls.emplace_back("end");
        return ICERR_OK;
    case ICM_DECOMPRESS:
        return codec.Decompress(As<const ICDECOMPRESS>(first));
    default:
        return 1;
    }
}

LRESULT ScriptedCodec::Open(DWORD handler) {
    // Codes are matched whatever the case of their letters; the tests install one at most.
    const auto found = Installed().find(handler);
    ScriptedCodec* codec = found != Installed().end() ? found->second : Installed().begin()->second;
    codec->calls.emplace_back("open");
    return codec->refuses ? 0 : reinterpret_cast<LRESULT>(codec);
}

LRESULT ScriptedCodec::Query(LPARAM first, LPARAM second) {
    calls.push_back("query " + TextOf(first, second));
    return onQuery ? onQuery(As<const BITMAPINFOHEADER>(first), As<const BITMAPINFOHEADER>(second))
                   : ICERR_OK;
}

LRESULT ScriptedCodec::Begin(LPARAM first, LPARAM second) {
    calls.emplace_back("begin");
    begun = TextOf(first, second);
    return beginAnswer;
}

LRESULT ScriptedCodec::Decompress(const ICDECOMPRESS& picture) {
    const std::string bytes(static_cast<const char*>(picture.lpInput),
                            picture.lpbiInput->biSizeImage);
    pictures.push_back(((picture.dwFlags & ICDECOMPRESS_NOTKEYFRAME) == 0 ? "*" : "") + bytes);
    return onDecompress ? onDecompress(picture) : ICERR_OK;
}
