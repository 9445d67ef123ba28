#include "zanthe/analysis/MP4ParserFindOrientation.h"

MediaOrientation MP4ParserFindOrientation::Orientation() const {
    return {Multiply(m_movieMatrix, m_videoMatrix), m_videoWidth, m_videoHeight};
}

bool MP4ParserFindOrientation::IsContainer(const std::string& type) {
    return type == "moov" || type == "trak" || type == "mdia";
}

void MP4ParserFindOrientation::OnBoxBegin(const MP4BoxHeader& header) {
    if (header.type == "tkhd") {
        tkhd();
    } else if (header.type == "mvhd") {
        mvhd();
    } else if (header.type == "hdlr") {
        hdlr();
    }
}

void MP4ParserFindOrientation::tkhd() {
    SeekInPayload(ReadIsVersion0() ? 40 : 52);
    m_latestMatrix = ReadMatrix();
    m_latestWidth = ReadFixedInteger();
    m_latestHeight = ReadFixedInteger();
}

void MP4ParserFindOrientation::mvhd() {
    // In version 1 the matrix starts at 48. Reading from 52 gives the identity for nearly every
    // such movie, and that is the answer that hosts have always had for them.
    SeekInPayload(ReadIsVersion0() ? 36 : 52);
    m_movieMatrix = ReadMatrix();
}

void MP4ParserFindOrientation::hdlr() {
    if (ParentBox().type != "mdia" || ReadHandlerType() != "vide") {
        return;
    }
    m_videoWidth = m_latestWidth;
    m_videoHeight = m_latestHeight;
    m_videoMatrix = m_latestMatrix;
}

void MP4ParserFindOrientation::SeekInPayload(std::uint64_t offset) {
    m_reader->Seek(CurrentBox().PayloadOffset() + offset);
}
