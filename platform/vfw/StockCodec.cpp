#include "platform/vfw/StockCodec.h"

#include <cwchar>
#include <memory>
#include <span>

#include "platform/av/CodedPictureDecoder.h"
#include "platform/vfw/Dib.h"

namespace vfw {

namespace {

constexpr DWORD Code(char a, char b, char c, char d) {
    return static_cast<DWORD>(a) | static_cast<DWORD>(b) << 8 | static_cast<DWORD>(c) << 16 |
           static_cast<DWORD>(d) << 24;
}

// The code that FFmpeg knows the compression by.
DWORD KnownCode(DWORD code) {
    switch (code) {
    case Code('D', 'I', 'B', ' '):
    case Code('d', 'i', 'b', ' '):
    case Code('R', 'G', 'B', ' '):
        return BI_RGB;
    case Code('M', 'R', 'L', 'E'):
    case Code('m', 'r', 'l', 'e'):
    case Code('R', 'L', 'E', ' '):
    case Code('r', 'l', 'e', ' '):
        return BI_RLE8;
    default:
        return code;
    }
}

av::CodedPictureFormat FormatOf(const BITMAPINFOHEADER& input) {
    return {.tag = KnownCode(input.biCompression),
            .width = input.biWidth,
            .height = RowsOf(input),
            .bitsPerPixel = input.biBitCount,
            .bottomRowFirst = input.biHeight > 0};
}

bool SameStream(const BITMAPINFOHEADER& a, const BITMAPINFOHEADER& b) {
    return a.biWidth == b.biWidth && a.biHeight == b.biHeight && a.biBitCount == b.biBitCount &&
           a.biCompression == b.biCompression;
}

// One open codec. The decoder is made for the first format that comes and made anew for another.
class Stream {
public:
    explicit Stream(DWORD handler)
        : m_handler(handler) {}

    LRESULT Query(const BITMAPINFOHEADER* input, const BITMAPINFOHEADER* output) {
        if (input == nullptr) {
            return ICERR_BADPARAM;
        }
        if (output != nullptr && !CanWriteDib(*output, input->biWidth, RowsOf(*input))) {
            return ICERR_BADFORMAT;
        }
        return Prepare(*input) ? ICERR_OK : ICERR_BADFORMAT;
    }

    LRESULT Begin(const BITMAPINFOHEADER* input, const BITMAPINFOHEADER* output) {
        m_decoder.reset(); // another run: nothing of the one before
        return Query(input, output);
    }

    void End() { m_decoder.reset(); }

    LRESULT Decompress(const ICDECOMPRESS& request) {
        if (request.lpbiInput == nullptr || request.lpInput == nullptr ||
            request.lpbiOutput == nullptr || request.lpOutput == nullptr) {
            return ICERR_BADPARAM;
        }
        if (!Prepare(*request.lpbiInput)) {
            return ICERR_BADFORMAT;
        }
        const std::span bytes(static_cast<const std::uint8_t*>(request.lpInput),
                              request.lpbiInput->biSizeImage);
        const bool keyFrame = (request.dwFlags & ICDECOMPRESS_NOTKEYFRAME) == 0;
        switch (m_decoder->Decode(bytes, keyFrame, m_shown)) {
        case av::CodedPictureResult::Picture:
            break;
        case av::CodedPictureResult::Unchanged:
            if (m_shown == nullptr) {
                return ICERR_DONTDRAW;
            }
            break;
        case av::CodedPictureResult::Failed:
            return ICERR_ERROR;
        }
        return WriteDib(*m_shown, *request.lpbiOutput, request.lpOutput) ? ICERR_OK
                                                                         : ICERR_BADFORMAT;
    }

    LRESULT Tell(ICINFO* info, DWORD size) const {
        if (info == nullptr || size < sizeof(ICINFO)) {
            return 0;
        }
        *info = {};
        info->dwSize = sizeof(ICINFO);
        info->fccType = ICTYPE_VIDEO;
        info->fccHandler = m_handler;
        std::wcscpy(info->szName, L"FFmpeg");
        std::wcscpy(info->szDescription, L"FFmpeg's decoder for this code");
        return sizeof(ICINFO);
    }

private:
    bool Prepare(const BITMAPINFOHEADER& input) {
        if (m_decoder == nullptr || !SameStream(input, m_input)) {
            m_shown.reset();
            m_input = input;
            m_decoder = av::CodedPictureDecoder::Open(FormatOf(input));
        }
        return m_decoder != nullptr;
    }

    DWORD m_handler;
    BITMAPINFOHEADER m_input{};
    std::unique_ptr<av::CodedPictureDecoder> m_decoder;
    av::PicturePtr m_shown; // the last picture
};

LRESULT OpenStream(const ICOPEN* request) {
    if (request == nullptr || !av::DecodesTag(KnownCode(request->fccHandler))) {
        return 0;
    }
    return reinterpret_cast<LRESULT>(new Stream(request->fccHandler));
}

template <typename T>
T* As(LPARAM parameter) {
    return reinterpret_cast<T*>(parameter); // NOLINT(performance-no-int-to-ptr)
}

// Messages to a codec that is open.
LRESULT Answer(Stream& stream, UINT message, LPARAM lParam1, LPARAM lParam2) {
    switch (message) {
    case ICM_DECOMPRESS_QUERY:
        return stream.Query(As<BITMAPINFOHEADER>(lParam1), As<BITMAPINFOHEADER>(lParam2));
    case ICM_DECOMPRESS_BEGIN:
        return stream.Begin(As<BITMAPINFOHEADER>(lParam1), As<BITMAPINFOHEADER>(lParam2));
    case ICM_DECOMPRESS:
        return lParam1 == 0 ? ICERR_BADPARAM : stream.Decompress(*As<ICDECOMPRESS>(lParam1));
    case ICM_DECOMPRESS_END:
        stream.End();
        return ICERR_OK;
    case ICM_GETINFO:
        return stream.Tell(As<ICINFO>(lParam1), static_cast<DWORD>(lParam2));
    default:
        return ICERR_UNSUPPORTED;
    }
}

} // namespace

LRESULT StockCodec(DWORD_PTR id, HDRVR, UINT message, LPARAM lParam1, LPARAM lParam2) {
    switch (message) {
    case DRV_LOAD:
    case DRV_ENABLE:
    case DRV_DISABLE:
    case DRV_FREE:
        return 1;
    case DRV_OPEN:
        return OpenStream(As<ICOPEN>(lParam2));
    case DRV_CLOSE:
        std::unique_ptr<Stream>(As<Stream>(static_cast<LPARAM>(id))).reset();
        return 1;
    default:
        return id == 0 ? ICERR_BADHANDLE
                       : Answer(*As<Stream>(static_cast<LPARAM>(id)), message, lParam1, lParam2);
    }
}

} // namespace vfw
