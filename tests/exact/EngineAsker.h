#pragma once

#include <memory>
#include <string>

#include "platform/av/VideoStream.h"
#include "tests/exact/PictureAsker.h"

// The engine alone, which serves files of all containers.
//
// Thread-safety: none.
class EngineAsker : public IPictureAsker {
public:
    explicit EngineAsker(const std::string& path);

    // False when the engine does not open the file or finds no picture in it.
    explicit operator bool() const { return m_any; }

    av::VideoStream& Stream() { return *m_stream; }

    // IPictureAsker
    std::optional<BgraPicture> At(Zanthe::MediaTime time) override;

private:
    std::unique_ptr<av::VideoStream> m_stream;
    bool m_any = false;
    std::int64_t m_first = 0; // when the first picture starts, 100 ns
};
