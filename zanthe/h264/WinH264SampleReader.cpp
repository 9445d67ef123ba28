#include "zanthe/h264/WinH264SampleReader.h"

#include <stdexcept>
#include <utility>

#include "platform/mf/DXGIBuffer.h"
#include "platform/mf/DXGIDeviceManager.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"
#include "zanthe/h264/HardwareDecoders.h"
#include "zanthe/h264/KeyFrameCollectingSeekOrStepThroughDecider.h"
#include "zanthe/h264/MFVideoSample.h"
#include "zanthe/h264/Nv12ToRgb32.h"
#include "zanthe/h264/SourceReaderSetup.h"
#include "zanthe/h264/WinH264FastSampleFinder.h"

namespace Zanthe {

namespace {

// Empty where the read fails or gives no sample: there is no video without a first picture.
com::ComPtr<IMFSample> ReadFirstSample(IMFSourceReader* reader, int streamIndex) {
    DWORD flags = 0;
    LONGLONG time = 0;
    com::ComPtr<IMFSample> sample;
    const HRESULT result = reader->ReadSample(static_cast<DWORD>(streamIndex), 0, nullptr, &flags,
                                              &time, sample.Put());
    return SUCCEEDED(result) ? sample : com::ComPtr<IMFSample>();
}

bool LiesOnDevice(IMFSample* sample) {
    com::ComPtr<IMFMediaBuffer> buffer;
    return SUCCEEDED(sample->GetBufferByIndex(0, buffer.Put())) && buffer &&
           buffer.As<IMFDXGIBuffer>(IID_IMFDXGIBuffer);
}

} // namespace

WinH264SampleReader* WinH264SampleReader::create(const std::string& path, int /*streamIndex*/,
                                                 DecoderOutputFormat format,
                                                 IMFDXGIDeviceManager* deviceManager) {
    std::unique_ptr<WinH264SampleReader> reader(
        new WinH264SampleReader(path, format, deviceManager));
    reader->Open();
    return reader.release();
}

int WinH264SampleReader::ActiveHardwareDecodersLimit() {
    return HardwareDecodersLimit;
}

WinH264SampleReader::WinH264SampleReader(const std::string& path, DecoderOutputFormat format,
                                         IMFDXGIDeviceManager* deviceManager)
    : m_path(path)
    , m_deviceManager(deviceManager)
    , m_outputFormat(format)
    , m_converter(std::make_unique<Nv12ToRgb32>()) {}

WinH264SampleReader::~WinH264SampleReader() {
    if (m_usesHardware) {
        RemoveHardwareDecoder();
    }
}

void WinH264SampleReader::Open() {
    m_status = Configure();
    if (m_status == ReaderStatus::ReaderStatusOk) {
        m_status = StartFinder();
    }
}

// Everything up to the first read.
ReaderStatus WinH264SampleReader::Configure() {
    const TrackGeometry geometry = TrackGeometryOf(m_path);
    m_outputFormat = ChooseOutputFormat(m_outputFormat, m_deviceManager.Get(), geometry);
    m_sourceReader = OpenSourceReader(m_path, m_outputFormat, m_deviceManager.Get());
    if (!m_sourceReader) {
        return ReaderStatus::ReaderStatusSourceReaderFailed;
    }
    com::ComPtr<IMFMediaType> native;
    if (FAILED(m_sourceReader->GetNativeMediaType(MF_SOURCE_READER_FIRST_VIDEO_STREAM, 0,
                                                  native.Put())) ||
        !native) {
        return ReaderStatus::ReaderStatusNativeTypeFailed;
    }
    if (!IsSupportedVideo(native.Get(), &m_nativeType.subtype)) {
        return ReaderStatus::ReaderStatusUnsupportedType;
    }
    m_nativeType = DescribeNativeType(native.Get(), m_nativeType.subtype, geometry);
    m_color = ColorOf(native.Get(), geometry);
    if (FAILED(SetOutputType(m_sourceReader.Get(), m_outputFormat, m_nativeType))) {
        return ReaderStatus::ReaderStatusSetTypeFailed;
    }
    return FAILED(SelectFirstVideoStream(m_sourceReader.Get()))
               ? ReaderStatus::ReaderStatusStreamSelectFailed
               : ReaderStatus::ReaderStatusOk;
}

ReaderStatus WinH264SampleReader::StartFinder() {
    m_streamIndex = FindSelectedStream(m_sourceReader.Get());
    com::ComPtr<IMFSample> first = ReadFirstSample(m_sourceReader.Get(), m_streamIndex);
    if (!first) {
        return ReaderStatus::ReaderStatusFirstReadFailed;
    }
    static_cast<void>(first->GetSampleTime(&m_firstSampleTime));
    auto decider = std::make_unique<KeyFrameCollectingSeekOrStepThroughDecider>(
        m_path, m_streamIndex, m_firstSampleTime, m_nativeType.subtype);
    const std::int64_t duration = FindDuration(m_path);
    try {
        m_sampleFinder = std::make_unique<WinH264FastSampleFinder>(
            m_sourceReader.Get(), first.Detach(), duration, m_streamIndex, std::move(decider),
            [this](IMFSample* sample) { OnSampleRead(sample); });
    } catch (const std::runtime_error&) {
        return ReaderStatus::ReaderStatusFirstReadFailed; // a stream that is there no longer
    }
    return ReaderStatus::ReaderStatusOk;
}

void WinH264SampleReader::OnSampleRead(IMFSample* sample) {
    if (!m_firstSampleSeen) {
        OnFirstSample(sample);
        m_firstSampleSeen = true;
    }
    static_cast<void>(
        MFSetAttributeSize(sample, MF_MT_FRAME_SIZE, m_decodedWidth, m_decodedHeight));
    m_color.AttachToSample(sample);
}

void WinH264SampleReader::OnFirstSample(IMFSample* sample) {
    if (LiesOnDevice(sample)) {
        m_usesHardware = true;
        AddHardwareDecoder();
    }
    com::ComPtr<IMFMediaType> type;
    if (SUCCEEDED(m_sourceReader->GetCurrentMediaType(static_cast<DWORD>(m_streamIndex),
                                                      type.Put())) &&
        type) {
        static_cast<void>(
            MFGetAttributeSize(type.Get(), MF_MT_FRAME_SIZE, &m_decodedWidth, &m_decodedHeight));
    }
}

int WinH264SampleReader::outputWidth() const {
    return static_cast<int>(m_nativeType.width);
}

int WinH264SampleReader::outputHeight() const {
    return static_cast<int>(m_nativeType.height);
}

IMFSample* WinH264SampleReader::readSample(MediaTime time, VideoSampleReaderFlags /*flags*/) {
    if (m_status != ReaderStatus::ReaderStatusOk) {
        return nullptr;
    }
    auto sample = com::ComPtr<IMFSample>::Attach(m_sampleFinder->findSampleAtTime(time));
    if (sample && m_outputFormat == DecoderOutputFormat::MemoryNv12) {
        sample = m_converter->Convert(sample.Get(), m_sourceReader.Get(), m_streamIndex,
                                      {m_nativeType.width, m_nativeType.height},
                                      {m_decodedWidth, m_decodedHeight});
    }
    return sample.Detach();
}

VideoSample*
WinH264SampleReader::readVideoSample(MediaTime time,
                                     std::function<void(unsigned char*, int)> /*prepare*/,
                                     VideoSampleReaderFlags flags) {
    // The search's own reference ends with this; the sample has taken one for itself.
    const auto found = com::ComPtr<IMFSample>::Attach(readSample(time, flags));
    return found ? new MFVideoSample(found.Get(), outputWidth(), outputHeight()) : nullptr;
}

bool WinH264SampleReader::requiresFlagSometimesToActuallyGetSamples() {
    return false;
}

bool WinH264SampleReader::requiresMediaOrientationTransformation() {
    return false;
}

std::int64_t WinH264SampleReader::StreamDuration() const {
    constexpr std::int64_t unknown = -1;
    return m_sampleFinder ? m_sampleFinder->StreamDuration() : unknown;
}

const std::deque<ReadSampleOp>& WinH264SampleReader::readSampleOps() const {
    static const std::deque<ReadSampleOp> none;
    return m_sampleFinder ? m_sampleFinder->readSampleOps() : none;
}

const std::deque<std::int64_t>& WinH264SampleReader::readSampleFailures() const {
    static const std::deque<std::int64_t> none;
    return m_sampleFinder ? m_sampleFinder->readSampleFailures() : none;
}

const std::deque<int>& WinH264SampleReader::attempts() const {
    static const std::deque<int> none;
    return m_sampleFinder ? m_sampleFinder->attempts() : none;
}

bool WinH264SampleReader::NeedToSeekBetweenTimes(std::int64_t from, std::int64_t to) const {
    if (!m_sampleFinder) {
        throw std::runtime_error("WinH264SampleReader: No sample finder!");
    }
    return m_sampleFinder->NeedToSeekBetweenTimes(from, to);
}

} // namespace Zanthe
