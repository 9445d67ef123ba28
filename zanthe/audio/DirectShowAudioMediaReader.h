// A file's sound through a DirectShow chain.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include "zanthe/audio/IAudioReader.h"
#include "zanthe/core/Export.h"

class IDSChain;

namespace Zanthe {

// Hosts make it from a path; what else it can be made from is not installed.
//
// Always 44100 Hz: a chain of sound knows no other rate.
//
// Thread-safety: none; one reader serves one thread at a time.
class ZANTHE_API DirectShowAudioMediaReader : public IAudioReader {
public:
    // Over the file at `path` (UTF-8). Throws TextException "Failed to create DSAudioChain".
    explicit DirectShowAudioMediaReader(const std::string& path);

    // The chain that `make` makes for the file at `path` (UTF-8), as this class wants one: with no
    // samples kept and at most ten steps for a search. Empty when it makes none.
    static boost::shared_ptr<IDSChain> MakeChain(
        const std::string& path,
        const std::function<boost::shared_ptr<IDSChain>(const std::wstring&, int, int)>& make);

    // The same over a chain that is there; an empty one throws as above.
    DirectShowAudioMediaReader(const std::string& path, boost::shared_ptr<IDSChain> chain);

    ~DirectShowAudioMediaReader() override;

    // IAudioReader
    //
    // 0 also for a startFrame so far from 0 that no time in 100 ns units can name it.
    unsigned int FillAudioBuffer(std::int64_t startFrame, unsigned int frameCount,
                                 std::vector<float*>& channels) override;

private:
    std::string m_path;
    boost::shared_ptr<IDSChain> m_chain;
};

} // namespace Zanthe
