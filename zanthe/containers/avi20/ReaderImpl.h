// An open AVI file; see Reader.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "zanthe/containers/avi20/BasicInfoParser.h"
#include "zanthe/containers/avi20/MediaStreamReaderImpl.h"

namespace AVI20::Read {

class ReaderImpl {
public:
    explicit ReaderImpl(IStream* stream);
    ReaderImpl(const ReaderImpl&) = delete;
    ReaderImpl& operator=(const ReaderImpl&) = delete;

    // The streams go first, in their order, then the parser.
    ~ReaderImpl();

    const BasicInfoParser& Parser() const { return m_parser; }

    // The stream, with its index loaded on the first request. Null where `index` is above the
    // count of streams; one equal to it is let pass, and throws as a stream without an index does.
    const MediaStreamReaderImpl* Stream(std::size_t index);

private:
    IStream* m_stream;
    std::vector<std::unique_ptr<MediaStreamReaderImpl>> m_streams; // null until asked for
    BasicInfoParser m_parser;
};

} // namespace AVI20::Read
