// Finds how the last video track of a file is to be displayed. See ReadMediaOrientation.
#pragma once

#include <cstdint>
#include <string>

#include "zanthe/analysis/MP4ParserBase.h"
#include "zanthe/analysis/MediaOrientation.h"

// Checks, from outside of the library, that the virtual operations keep their order.
struct MP4OperationOrder;

// Thread-safety: none; one finder serves one thread, for one call.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never owned by its base
class MP4ParserFindOrientation final : public MP4ParserBase {
public:
    using MP4ParserBase::MP4ParserBase;

    // What the walk has found.
    MediaOrientation Orientation() const;

protected:
    // MP4ParserBase
    bool IsContainer(const std::string& type) override;
    void OnBoxBegin(const MP4BoxHeader& header) override;

    // Readers of one box each.
    virtual void tkhd();
    virtual void mvhd();
    virtual void hdlr();

private:
    friend struct MP4OperationOrder;

    void SeekInPayload(std::uint64_t offset);

    MP4Matrix m_videoMatrix = IdentityMatrix;
    MP4Matrix m_movieMatrix = IdentityMatrix;
    std::int32_t m_videoWidth = 0;
    std::int32_t m_videoHeight = 0;

    // Of the latest `tkhd`: only the `hdlr` behind it tells whether that was a video track's.
    std::int32_t m_latestWidth = 0;
    std::int32_t m_latestHeight = 0;
    MP4Matrix m_latestMatrix = IdentityMatrix;
};
