#include "zanthe/containers/avi20/Reader.h"

#include "zanthe/containers/avi20/ReaderImpl.h"

namespace AVI20::Read {

Reader::Reader(IStream* stream)
    : m_impl(std::make_unique<ReaderImpl>(stream)) {}

Reader::~Reader() = default;

std::size_t Reader::GetStreamCount() const {
    return m_impl->Parser().StreamCount();
}

StreamInfo Reader::GetStreamInfo(std::size_t index) const {
    return m_impl->Parser().GetStreamInfo(index);
}

MediaStreamReader Reader::GetMediaStreamReader(std::size_t index) {
    return MediaStreamReader(m_impl->Stream(index));
}

} // namespace AVI20::Read
