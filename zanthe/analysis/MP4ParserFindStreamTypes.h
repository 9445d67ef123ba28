// Lists the kind and codec of each track. See ReadMP4StreamTypes.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "zanthe/analysis/MP4ParserBase.h"
#include "zanthe/analysis/MP4StreamTypes.h"

// Checks, from outside of the library, that the virtual operations keep their order.
struct MP4OperationOrder;

// Thread-safety: none; one finder serves one thread, for one call.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never owned by its base
class MP4ParserFindStreamTypes final : public MP4ParserBase {
public:
    using MP4ParserBase::MP4ParserBase;

    // What the walk has found; valid as long as the finder.
    const std::vector<MP4StreamType>& StreamTypes() const { return m_streamTypes; }

protected:
    // MP4ParserBase
    bool IsContainer(const std::string& type) override;
    void OnBoxBegin(const MP4BoxHeader& header) override;
    void OnBoxEnd(const MP4BoxHeader& header) override;

    // Readers of one box each.
    virtual void stsd();
    virtual void hdlr();
    virtual void tkhd();

private:
    friend struct MP4OperationOrder;

    // Of the current track. Neither is reset for the next one.
    std::int32_t m_type = MP4TrackType::Other;
    std::string m_codec;

    std::vector<MP4StreamType> m_streamTypes;
};
