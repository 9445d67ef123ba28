#include "bench/OpenCvVideoReader.h"

#include <stdexcept>

OpenCvVideoReader::OpenCvVideoReader(const std::string& path)
    : m_capture(path, cv::CAP_FFMPEG) {
    if (!m_capture.isOpened()) {
        throw std::runtime_error("opencv: cannot open " + path);
    }
}

ShownPicture OpenCvVideoReader::Show(int number) {
    const bool again = number == m_next - 1 && !m_picture.empty();
    if (!again) {
        // Where the next one is wanted, setting the position would only cost.
        if (number != m_next) {
            m_capture.set(cv::CAP_PROP_POS_FRAMES, number);
        }
        if (!m_capture.read(m_picture)) {
            throw std::runtime_error("opencv: no picture " + std::to_string(number));
        }
        m_next = number + 1;
    }
    return {m_picture.data, static_cast<std::ptrdiff_t>(m_picture.step[0]), m_picture.cols,
            m_picture.rows, 3};
}
