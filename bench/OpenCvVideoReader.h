#pragma once

#include <string>

#include <opencv2/videoio.hpp>

#include "bench/VideoContender.h"

// OpenCV's VideoCapture: 24 bits a pixel, blue first.
//
// Thread-safety: none.
class OpenCvVideoReader : public VideoContender {
public:
    // Throws std::runtime_error.
    explicit OpenCvVideoReader(const std::string& path);

    // VideoContender
    ShownPicture Show(int number) override;

private:
    cv::VideoCapture m_capture;
    cv::Mat m_picture;
    int m_next = 0; // what a read would give
};
