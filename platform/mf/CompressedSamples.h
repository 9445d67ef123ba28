// Samples of a video stream as the file holds them.
#pragma once

#include <memory>
#include <string>

#include "platform/av/CompressedStream.h"
#include "platform/mf/ISampleSource.h"

namespace mf {

// Each sample has one picture, in the order in which they are decoded, with the time at which it is
// shown, and MFSampleExtension_CleanPoint on key frames.
class CompressedSamples final : public ISampleSource {
public:
    // Null where the stream cannot be opened.
    static std::unique_ptr<CompressedSamples> Open(const std::string& path, int ordinal);

    // ISampleSource
    HRESULT SetPosition(LONGLONG position) override;
    SampleRead Read() override;

    void Describe(IMFMediaType& /*type*/) const override {}

private:
    explicit CompressedSamples(std::unique_ptr<av::CompressedStream> stream)
        : m_stream(std::move(stream)) {}

    const std::unique_ptr<av::CompressedStream> m_stream;
};

} // namespace mf
