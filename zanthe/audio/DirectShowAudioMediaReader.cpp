#include "zanthe/audio/DirectShowAudioMediaReader.h"

#include <limits>
#include <optional>
#include <utility>

#include "platform/win32/Text.h"
#include "zanthe/core/TextException.h"
#include "zanthe/directshow/AudioChain.h"

namespace Zanthe {

namespace {

constexpr int ExtraBuffers = 0;
constexpr int MaxSteps = 10;

constexpr std::int64_t UnitsPerSecond = 10'000'000;
constexpr std::int64_t FramesPerSecond = 44100;

// In 100 ns units, truncated; nothing where the product has no 64 bits.
std::optional<std::int64_t> TimeOfFrame(std::int64_t frame) {
    constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / UnitsPerSecond;
    if (frame > limit || frame < -limit) {
        return std::nullopt;
    }
    return frame * UnitsPerSecond / FramesPerSecond;
}

} // namespace

DirectShowAudioMediaReader::DirectShowAudioMediaReader(const std::string& path)
    : DirectShowAudioMediaReader(path, MakeChain(path, CreateAudioChain)) {}

boost::shared_ptr<IDSChain> DirectShowAudioMediaReader::MakeChain(const std::string& path,
                                                                  const AudioChainMaker& make) {
    return make(win32::Utf8ToWide(path), ExtraBuffers, MaxSteps);
}

DirectShowAudioMediaReader::DirectShowAudioMediaReader(const std::string& path,
                                                       boost::shared_ptr<IDSChain> chain)
    : m_path(path)
    , m_chain(std::move(chain)) {
    if (m_chain == nullptr) {
        throw TextException("Failed to create DSAudioChain");
    }
}

DirectShowAudioMediaReader::~DirectShowAudioMediaReader() = default;

unsigned int DirectShowAudioMediaReader::FillAudioBuffer(std::int64_t startFrame,
                                                         unsigned int frameCount,
                                                         std::vector<float*>& channels) {
    const auto time = TimeOfFrame(startFrame);
    if (!time) {
        return 0;
    }
    FindSampleResult status{};
    return m_chain->ReadAudioFloat(*time, 0, frameCount, channels, status);
}

} // namespace Zanthe
