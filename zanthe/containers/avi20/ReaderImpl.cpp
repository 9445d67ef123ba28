#include "zanthe/containers/avi20/ReaderImpl.h"

namespace AVI20::Read {

ReaderImpl::ReaderImpl(IStream* stream)
    : m_stream(stream)
    , m_parser(stream) {
    m_parser.ParseFile();
}

ReaderImpl::~ReaderImpl() {
    m_streams.clear();
}

const MediaStreamReaderImpl* ReaderImpl::Stream(std::size_t index) {
    if (index > m_parser.StreamCount()) {
        return nullptr;
    }
    if (m_streams.size() <= index) {
        m_streams.resize(index + 1);
    }
    if (m_streams[index] == nullptr) {
        m_streams[index] = std::make_unique<MediaStreamReaderImpl>(
            m_stream, m_parser.GetStreamInfo(index), m_parser.MoviStart());
    }
    return m_streams[index].get();
}

} // namespace AVI20::Read
