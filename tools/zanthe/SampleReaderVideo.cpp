#include "tools/zanthe/SampleReaderVideo.h"

#include <stdexcept>
#include <utility>

namespace Program {

SampleReaderVideo::SampleReaderVideo(std::unique_ptr<Zanthe::VideoSampleReader> reader,
                                     const VideoFacts& facts)
    : m_reader(std::move(reader))
    , m_facts(facts)
    , m_flags(m_reader->requiresFlagSometimesToActuallyGetSamples()
                  ? Zanthe::VideoSampleReaderFlags::QuickAnswer
                  : Zanthe::VideoSampleReaderFlags::None) {
    m_facts.width = m_reader->outputWidth();
    m_facts.height = m_reader->outputHeight();
    m_facts.tellsTimes = false;
}

std::optional<Picture> SampleReaderVideo::At(const Zanthe::MediaTime& time) {
    try {
        std::unique_ptr<Zanthe::VideoSample> sample(m_reader->readVideoSample(time, {}, m_flags));
        if (!sample) {
            return std::nullopt;
        }
        return Picture{.sample = std::move(sample)};
    } catch (const char* text) {
        // The graph side of the library throws its texts bare.
        throw std::runtime_error(text);
    }
}

} // namespace Program
