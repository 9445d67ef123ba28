#include "zanthe/analysis/MP4TopLevel.h"

bool MP4TopLevel::IsContainer(const std::string&) {
    return false;
}

void MP4TopLevel::OnBoxBegin(const MP4BoxHeader& header) {
    m_hasMovie = m_hasMovie || header.type == "moov";
    if (header.End() > m_fileSize) {
        m_beyond = header;
    }
}
