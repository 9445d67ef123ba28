#include "zanthe/audio/mf/CanonicalResampler.h"

#include <cstring>
#include <utility>

#include "platform/com/ClassRegistry.h"
#include "zanthe/audio/mf/AudioMediaType.h"
#include "zanthe/audio/mf/CanonicalFormat.h"
#include "zanthe/audio/mf/SampleBytes.h"
#include "zanthe/audio/mf/StereoPlanes.h"

namespace Zanthe {

namespace {

// Wherever a class may live: in this process, in a handler, on this machine or another one.
constexpr DWORD AnyContext = 0x17;

com::ComPtr<IMFSample> MakeEmptySample(DWORD capacity, com::ComPtr<IMFMediaBuffer>& buffer) {
    com::ComPtr<IMFSample> sample;
    if (FAILED(MFCreateSample(sample.Put())) ||
        FAILED(MFCreateMemoryBuffer(capacity, buffer.Put())) ||
        FAILED(sample->AddBuffer(buffer.Get()))) {
        return {};
    }
    return sample;
}

} // namespace

com::ComPtr<IMFTransform> CreateResampler() {
    com::ComPtr<IMFTransform> resampler;
    if (FAILED(CoCreateInstance(CLSID_CResamplerMediaObject, nullptr, AnyContext, IID_IMFTransform,
                                resampler.PutVoid()))) {
        return {};
    }
    return resampler;
}

HRESULT SetResamplerTypes(IMFTransform& resampler, IMFMediaType& input) {
    const HRESULT result = resampler.SetInputType(0, &input, 0);
    const com::ComPtr<IMFMediaType> output = MakeAudioType(CanonicalFormat(), SampleSizes::Untold);
    if (FAILED(result) || !output) {
        return FAILED(result) ? result : E_OUTOFMEMORY;
    }
    return resampler.SetOutputType(0, output.Get(), 0);
}

com::ComPtr<IMFSample> MakeOutputSample(unsigned int frameCount) {
    com::ComPtr<IMFMediaBuffer> buffer;
    return MakeEmptySample(frameCount * CanonicalBlockAlign, buffer);
}

HRESULT PullResampled(IMFTransform& resampler, IMFSample& output) {
    MFT_OUTPUT_DATA_BUFFER place{0, &output, 0, nullptr};
    DWORD status = 0;
    return resampler.ProcessOutput(0, 1, &place, &status);
}

unsigned int TakeFrames(IMFSample& sample, StereoPlanes& planes) {
    com::ComPtr<IMFMediaBuffer> buffer;
    if (FAILED(sample.GetBufferByIndex(0, buffer.Put()))) {
        return 0;
    }
    const SampleBytes bytes(std::move(buffer));
    return planes.Append(bytes.Bytes(), bytes.ByteCount() / CanonicalBlockAlign);
}

com::ComPtr<IMFSample> MakeSampleOf(const unsigned char* bytes, std::uint32_t byteCount) {
    com::ComPtr<IMFMediaBuffer> buffer;
    com::ComPtr<IMFSample> sample = MakeEmptySample(byteCount, buffer);
    if (!sample) {
        return {};
    }
    {
        const SampleBytes memory(buffer);
        if (FAILED(memory.Result())) {
            return {};
        }
        std::memcpy(memory.Bytes(), bytes, byteCount);
    }
    return SUCCEEDED(buffer->SetCurrentLength(byteCount)) ? sample : com::ComPtr<IMFSample>();
}

} // namespace Zanthe
