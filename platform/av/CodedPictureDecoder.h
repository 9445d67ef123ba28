// Decodes pictures that come one by one from the caller: no file, no times.
//
//     auto decoder = CodedPictureDecoder::Open({.tag = tag, .width = 64, .height = 48});
//     PicturePtr picture;
//     if (decoder->Decode(bytes, picture) == CodedPictureResult::Picture) ...
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/av/Picture.h"

namespace av {

struct CodedPictureFormat {
    std::uint32_t tag = 0; // four-character code, first character lowest; 0: uncompressed RGB
    int width = 0;
    int height = 0;
    int bitsPerPixel = 0;        // as the stream says it; needed where pixels are uncompressed
    bool bottomRowFirst = false; // of uncompressed pixels; decoders know for themselves
};

enum class CodedPictureResult {
    Picture,
    Unchanged, // the bytes are well-formed and show nothing new
    Failed,
};

// Whether there is a decoder for the code, whatever the case of its letters.
// Thread-safety: safe from any thread.
bool DecodesTag(std::uint32_t tag);

// Every picture comes out with the bytes that make it: nothing is held back.
//
// Thread-safety: none; one thread at a time.
class CodedPictureDecoder {
public:
    // Null where nothing decodes the format, or where its size is none.
    static std::unique_ptr<CodedPictureDecoder> Open(const CodedPictureFormat& format);

    // `bytes` are borrowed for the call. `picture` is set for Picture alone; its times mean
    // nothing. Failed leaves the decoder fit for further pictures.
    CodedPictureResult Decode(std::span<const std::uint8_t> bytes, bool keyFrame,
                              PicturePtr& picture);

private:
    explicit CodedPictureDecoder(CodecContextPtr context);

    bool Send(std::span<const std::uint8_t> bytes, bool keyFrame);

    CodecContextPtr m_context;
    PacketPtr m_packet;
};

} // namespace av
