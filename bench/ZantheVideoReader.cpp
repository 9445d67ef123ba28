#include "bench/ZantheVideoReader.h"

#include <stdexcept>

using namespace Zanthe;

ZantheVideoReader::ZantheVideoReader(const std::string& path, int rate)
    : m_rate(rate) {
    const std::unique_ptr<DecoderFactory> factory(DecoderFactory::Create());
    m_reader.reset(factory->CreateVideoSampleReader(path, 0, false));
    if (!m_reader) {
        throw std::runtime_error("zanthe: cannot open " + path);
    }
}

ZantheVideoReader::~ZantheVideoReader() {
    Unlock();
}

void ZantheVideoReader::Unlock() {
    if (m_sample) {
        m_sample->unlockData();
        m_sample.reset();
    }
}

ShownPicture ZantheVideoReader::Show(int number) {
    Unlock();
    m_sample.reset(
        m_reader->readVideoSample(MediaTime(number, m_rate), {}, VideoSampleReaderFlags::None));
    if (!m_sample) {
        throw std::runtime_error("zanthe: no picture " + std::to_string(number));
    }
    m_sample->lockData();
    return {m_sample->data(), m_sample->bytesPerRow(), m_sample->width(), m_sample->height(), 4};
}
