#include "tests/exact/PictureAsker.h"

#include <cstddef>
#include <stdexcept>

using Zanthe::VideoSample;

namespace {

// The picture must lie within what the sample says of its memory.
void RequireRoom(VideoSample& sample) {
    const std::int64_t end =
        static_cast<std::int64_t>(sample.bytesPerRow()) * (sample.height() - 1) +
        4LL * sample.width();
    if (sample.width() <= 0 || sample.height() <= 0 || sample.bytesPerRow() < 4 * sample.width() ||
        sample.bufferWidth() < sample.width() || sample.bufferHeight() < sample.height() ||
        sample.data() == nullptr || sample.dataSize() < end) {
        throw std::runtime_error("the sample's memory is too small for its picture");
    }
}

class Locked {
public:
    explicit Locked(VideoSample& sample)
        : m_sample(sample) {
        m_sample.lockData();
    }

    Locked(const Locked&) = delete;
    Locked& operator=(const Locked&) = delete;

    ~Locked() { m_sample.unlockData(); }

private:
    VideoSample& m_sample;
};

} // namespace

BgraPicture PixelsOf(VideoSample& sample) {
    if (sample.videoSampleFormat() != Zanthe::VideoSampleFormat::SystemMemory) {
        throw std::runtime_error("the sample is not in memory");
    }
    const Locked locked(sample);
    RequireRoom(sample);
    BgraPicture picture{sample.width(), sample.height(), {}};
    const std::size_t rowBytes = static_cast<std::size_t>(picture.width) * 4;
    for (int y = 0; y < picture.height; ++y) {
        const int row = sample.isFlipped() ? picture.height - 1 - y : y;
        const unsigned char* first =
            sample.data() + static_cast<std::ptrdiff_t>(row) * sample.bytesPerRow();
        picture.bits.insert(picture.bits.end(), first, first + rowBytes);
    }
    return picture;
}

PictureAsker::PictureAsker(const std::string& path)
    : m_factory(Zanthe::DecoderFactory::Create())
    , m_reader(m_factory->CreateVideoSampleReader(path, 0, false)) {}

std::optional<BgraPicture> PictureAsker::At(Zanthe::MediaTime time) {
    const std::unique_ptr<VideoSample> sample(
        m_reader->readVideoSample(time, {}, Zanthe::VideoSampleReaderFlags::None));
    if (!sample) {
        return std::nullopt;
    }
    if (sample->width() != m_reader->outputWidth() ||
        sample->height() != m_reader->outputHeight()) {
        throw std::runtime_error("the sample's size is not the reader's");
    }
    return PixelsOf(*sample);
}
