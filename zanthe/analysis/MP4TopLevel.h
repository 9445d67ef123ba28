// The outermost boxes of an MP4 or QuickTime file, for telling what is wrong with one.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "zanthe/analysis/MP4ParserBase.h"

// Thread-safety: none; one walker serves one thread, for one call.
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): final, and never owned by its base
class MP4TopLevel final : public MP4ParserBase {
public:
    using MP4ParserBase::MP4ParserBase;

    // Whether a `moov` has been met.
    bool HasMovie() const { return m_hasMovie; }

    // The box that claims to end behind the end of the file, if there is one: it is the last.
    const std::optional<MP4BoxHeader>& Beyond() const { return m_beyond; }

    // As MP4ParserBase: what was given up is no damage that stands where the walk ended.
    using MP4ParserBase::HasMetTooManyBoxes;

    // Bytes of the file; 0 before Parse.
    std::uint64_t FileSize() const { return m_fileSize; }

    // Where the walk ended: the end of the file or behind it, unless Parse threw.
    std::uint64_t Stopped() const { return m_reader->GetPosition(); }

protected:
    // MP4ParserBase
    bool IsContainer(const std::string& type) override;
    void OnBoxBegin(const MP4BoxHeader& header) override;

private:
    bool m_hasMovie = false;
    std::optional<MP4BoxHeader> m_beyond;
};
