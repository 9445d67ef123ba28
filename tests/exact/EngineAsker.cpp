#include "tests/exact/EngineAsker.h"

#include "platform/av/PictureConversion.h"

EngineAsker::EngineAsker(const std::string& path)
    : m_stream(av::VideoStream::Open(path, {})) {
    av::PicturePtr picture;
    if (m_stream && m_stream->Read(picture) == av::ReadResult::Picture) {
        m_any = true;
        m_first = picture->Start();
    }
}

std::optional<BgraPicture> EngineAsker::At(Zanthe::MediaTime time) {
    // The reader's tolerance: rounding a time up must not lead to the picture before.
    const std::int64_t hns = Zanthe::MediaTimeToReferenceTime(time) + 1;
    av::PicturePtr picture;
    if (!m_stream->Seek(m_first + hns) || m_stream->Read(picture) != av::ReadResult::Picture) {
        return std::nullopt;
    }
    BgraPicture pixels{picture->Width(), picture->Height(), {}};
    pixels.bits.resize(static_cast<std::size_t>(pixels.width) * pixels.height * 4);
    if (!av::ConvertToBgra(*picture, pixels.bits.data(), 4LL * pixels.width)) {
        return std::nullopt;
    }
    return pixels;
}
