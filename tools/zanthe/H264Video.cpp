#include "tools/zanthe/H264Video.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "platform/mf/Sample.h"
#include "zanthe/h264/MFVideoSample.h"

namespace Program {

namespace {

using Zanthe::ReaderStatus;
using Zanthe::ReadSampleOp;

std::string TextOf(ReaderStatus status) {
    switch (status) {
    case Zanthe::ReaderStatusOk:
        return "it is open";
    case Zanthe::ReaderStatusNotOpened:
        return "it was not opened";
    case Zanthe::ReaderStatusSourceReaderFailed:
        return "the file is damaged, or of a kind that it does not read";
    case Zanthe::ReaderStatusNativeTypeFailed:
        return "the file has no video stream";
    case Zanthe::ReaderStatusUnsupportedType:
        return "the video is neither H.264, HEVC nor MPEG-4 part 2";
    case Zanthe::ReaderStatusSetTypeFailed:
        return "nothing decodes the video";
    case Zanthe::ReaderStatusStreamSelectFailed:
        return "the video stream cannot be chosen";
    case Zanthe::ReaderStatusFirstReadFailed:
        return "the first picture cannot be read";
    }
    return {};
}

std::string TextOf(ReadSampleOp operation) {
    switch (operation) {
    case ReadSampleOp::ReturnedCurrentSample:
        return "returned the current sample";
    case ReadSampleOp::ReturnedPreviousSample:
        return "returned the previous sample";
    case ReadSampleOp::ReadNextSample:
        return "read the next sample";
    case ReadSampleOp::SeekBackward:
        return "sought backward";
    case ReadSampleOp::SeekForward:
        return "sought forward";
    case ReadSampleOp::SeekFailed:
        return "could not seek";
    }
    return {};
}

bool EndsSearch(ReadSampleOp operation) {
    return operation == ReadSampleOp::ReturnedCurrentSample ||
           operation == ReadSampleOp::ReturnedPreviousSample;
}

} // namespace

H264Video::H264Video(std::unique_ptr<Zanthe::WinH264SampleReader> reader, const VideoFacts& facts)
    : m_reader(std::move(reader))
    , m_facts(facts) {
    if (m_reader->readerStatus() != Zanthe::ReaderStatusOk) {
        throw std::runtime_error(TextOf(m_reader->readerStatus()));
    }
    const Zanthe::NativeMediaTypeInfo& type = m_reader->nativeMediaTypeInfo();
    m_facts.width = m_reader->outputWidth();
    m_facts.height = m_reader->outputHeight();
    if (!m_facts.shapeIsOfTrack) {
        m_facts.rotation = type.rotation;
        m_facts.aspectNumerator = type.pixelAspectRatioNumerator;
        m_facts.aspectDenominator = type.pixelAspectRatioDenominator;
    }
    m_facts.duration = m_reader->StreamDuration();
    m_facts.tellsTimes = true;
    m_facts.alpha = Alpha::None;
    m_facts.stream = 0; // whatever was asked for
}

std::optional<Picture> H264Video::At(const Zanthe::MediaTime& time) {
    const auto sample = com::ComPtr<IMFSample>::Attach(
        m_reader->readSample(time, Zanthe::VideoSampleReaderFlags::None));
    if (!sample) {
        return std::nullopt;
    }
    LONGLONG start = 0;
    LONGLONG duration = 0;
    if (FAILED(sample->GetSampleTime(&start)) || FAILED(sample->GetSampleDuration(&duration))) {
        throw std::runtime_error("a sample came without its time or its duration");
    }
    const Zanthe::ColorConversionInfo& colour = m_reader->colorConversionInfo();
    return Picture{.sample = std::make_unique<Zanthe::MFVideoSample>(
                       sample.Get(), m_reader->outputWidth(), m_reader->outputHeight()),
                   .start = start,
                   .duration = duration,
                   .matrix = colour.matrix,
                   .range = colour.nominalRange};
}

// The log goes on from search to search: the latest one's part begins behind the answer before.
std::vector<std::string> H264Video::Operations() const {
    const auto& log = m_reader->readSampleOps();
    std::vector<std::string> texts;
    for (auto operation = log.rbegin(); operation != log.rend(); ++operation) {
        if (EndsSearch(*operation) && !texts.empty()) {
            break;
        }
        texts.push_back(TextOf(*operation));
    }
    std::reverse(texts.begin(), texts.end());
    return texts;
}

} // namespace Program
