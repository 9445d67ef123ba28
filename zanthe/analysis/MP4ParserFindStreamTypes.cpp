#include "zanthe/analysis/MP4ParserFindStreamTypes.h"

bool MP4ParserFindStreamTypes::IsContainer(const std::string& type) {
    return type == "moov" || type == "trak" || type == "mdia" || type == "minf" || type == "stbl";
}

void MP4ParserFindStreamTypes::OnBoxBegin(const MP4BoxHeader& header) {
    if (header.type == "stsd") {
        stsd();
    } else if (header.type == "tkhd") {
        tkhd();
    } else if (header.type == "hdlr") {
        hdlr();
    }
}

void MP4ParserFindStreamTypes::OnBoxEnd(const MP4BoxHeader& header) {
    if (header.type == "trak") {
        RequireRoomForTrack(m_streamTypes.size());
        m_streamTypes.push_back({m_type, m_codec});
    }
}

void MP4ParserFindStreamTypes::stsd() {
    ReadInteger<std::uint32_t>(); // version and flags
    ReadInteger<std::uint32_t>(); // entry count
    ReadInteger<std::uint32_t>(); // size of the first entry
    m_codec = ReadFourCharacters();
}

void MP4ParserFindStreamTypes::hdlr() {
    if (ParentBox().type != "mdia") {
        return;
    }
    const std::string handler = ReadHandlerType();
    if (handler == "vide") {
        m_type = MP4TrackType::Video;
    } else if (handler == "soun") {
        m_type = MP4TrackType::Audio;
    } else {
        m_type = MP4TrackType::Other;
    }
}

// A first guess, for tracks without a handler. Fields are taken where version 0 has them, also in
// version 1: there the guess means nothing, and the handler has the last word in either.
void MP4ParserFindStreamTypes::tkhd() {
    Skip(16); // version and flags, creation and modification times, track_ID
    Skip(4);
    Skip(4); // duration
    Skip(8);
    Skip(2 + 2); // layer, alternate group
    const std::uint8_t volume = ReadBytes(2)[0];
    Skip(2);
    Skip(36); // matrix
    const std::int32_t width = ReadFixedInteger();
    const std::int32_t height = ReadFixedInteger();
    if (width != 0 && height != 0) {
        m_type = MP4TrackType::Video;
    } else {
        m_type = volume != 0 ? MP4TrackType::Audio : MP4TrackType::Other;
    }
}
