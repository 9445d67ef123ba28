// The screen video of a legacy recording, a compound file with an AVI file inside.
//
//     auto decoder = OrirecScreenVideoDecoder::create("/x/a.orirec");
//     std::vector<unsigned char> rows(decoder->outputWidth() * decoder->outputHeight() * 4);
//     double actualTime = -1.0;
//     decoder->readFrame(MediaTime(1, 2), rows.data(), actualTime);
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "platform/com/ComPtr.h"
#include "platform/ole/Storage.h"
#include "platform/vfw/Vfw.h"
#include "zanthe/containers/ZeroedBytes.h"
#include "zanthe/containers/avi20/Reader.h"
#include "zanthe/containers/avi20/WindowsStream.h"
#include "zanthe/core/VideoDecoder.h"

// Decodes with the Video for Windows codec that the stream names, from the key frame before the
// wanted frame or on from the frame decoded last, whichever is nearer.
//
// A frame of less than two bytes says that the picture has not changed. One at the place where
// decoding starts after a jump counts as a frame further than the last one was, as it always has:
// the number of the last frame is then that, and the next call goes by it.
//
// Thread-safety: none; one thread at a time. Different decoders are independent.
class OrirecScreenVideoDecoder : public Zanthe::VideoDecoder {
public:
    // `path` is UTF-8. Throws std::exception, a plain one, with a text that begins with
    // "OrirecScreenVideoDecoder - ": "orirec is not a structured-storage file!" where there is no
    // file, "failed to open structured-storage file!" where it is no compound file,
    // "failed to open screen stream!" where that is not in it, and
    // "VFW codec initialization failed!" where there is no codec for it, or where its pictures have
    // more than 2^27 pixels or less than none. Without that text: where the stream's AVI file or
    // its index cannot be read.
    static std::unique_ptr<OrirecScreenVideoDecoder> create(const std::string& path);

    // Sends the codec its end first.
    ~OrirecScreenVideoDecoder() override;

    // VideoDecoder. Both are 0 in a stream whose format has a palette: such a format is not read.
    int outputWidth() const override { return m_width; }

    int outputHeight() const override { return m_height; }

    // 32-bit pixels: blue, green, red, and a fourth byte that is 255 unless the codec gives its
    // own. actualTime becomes the time that was asked for. False, with `buffer` untouched, outside
    // the stream, and where a frame cannot be read or decoded; a later call may succeed. What the
    // codec throws counts as such a failure, and so does a fault of the processor in it (on this
    // thread; platform/win32/FaultGuard.h tells the rest).
    bool readFrame(Zanthe::MediaTime time, unsigned char* buffer, double& actualTime) override;

private:
    // The AVI file in the stream. Its members go in the opposite order.
    class AVI20Bundle {
    public:
        // `stream` is borrowed for the life of this object.
        explicit AVI20Bundle(::IStream* stream);
        AVI20Bundle(const AVI20Bundle&) = delete;
        AVI20Bundle& operator=(const AVI20Bundle&) = delete;
        virtual ~AVI20Bundle() = default;

        // Of the first stream of pictures; invalid where there is none.
        const AVI20::Read::MediaStreamReader& Video() const { return *m_video; }

        std::uint64_t Size() { return m_stream.Size(); }

    private:
        AVI20::Read::WindowsStream m_stream;
        AVI20::Read::Reader m_reader;
        std::shared_ptr<AVI20::Read::MediaStreamReader> m_video;
    };

    struct CloseCodec {
        void operator()(HIC codec) const;
    };

    explicit OrirecScreenVideoDecoder(const std::string& path);

    void OpenScreenStream(const std::wstring& path);
    void OpenCodec(const AVI20::Read::StreamInfo& info);
    void FillFormats(const AVI20::Read::StreamInfo& info);
    void FitFormatsToScreenCodec(const AVI20::Read::StreamInfo& info);
    void AskCodec();
    void AllocateBuffers();
    void TakeTimes(const AVI20::Read::StreamInfo& info);

    bool DecodeUpTo(std::uint32_t frame);
    std::uint32_t StartFor(std::uint32_t frame) const;
    bool DecodeFrame(std::uint32_t frame, std::uint32_t size);
    bool Decompress(std::uint32_t frame);
    void Remember(std::uint32_t frame);
    void ExpandTo32Bits();
    bool CopyUpright(unsigned char* buffer) const;

    std::uint32_t m_recentFramesCapacity = 50;
    // They go in the opposite order: the codec, what it read from, and its buffers last.
    ZeroedBytes m_compressedBuffer;
    ZeroedBytes m_decodedBuffer;  // bottom row first
    ZeroedBytes m_expandedBuffer; // 32-bit copy of 16-bit pixels; made by the first picture
    com::ComPtr<IStorage> m_storage;
    com::ComPtr<::IStream> m_screenStream;
    std::unique_ptr<AVI20Bundle> m_bundle;
    std::unique_ptr<struct OpenCodec, CloseCodec> m_codec;
    BITMAPINFOHEADER m_inputFormat{};
    BITMAPINFOHEADER m_outputFormat{};
    std::int32_t m_width = 0; // the stream's own, before any rounding
    std::int32_t m_height = 0;
    std::uint32_t m_compressedCapacity = 0;
    double m_frameRate = 0.0;
    double m_durationSeconds = 0.0;
    std::int32_t m_lastFrame = -1;            // in m_decodedBuffer now
    std::deque<std::uint32_t> m_recentFrames; // a log of what was decoded, for the debugger
};
