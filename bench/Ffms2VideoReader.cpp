#include "bench/Ffms2VideoReader.h"

#include <array>
#include <stdexcept>

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace {

// Its functions write their error's text into a caller's buffer.
struct Failure {
    std::array<char, 512> text{};
    FFMS_ErrorInfo info{FFMS_ERROR_SUCCESS, FFMS_ERROR_SUCCESS, static_cast<int>(text.size()),
                        text.data()};

    template <typename T>
    T* Checked(T* result) {
        if (result == nullptr) {
            throw std::runtime_error(std::string("ffms2: ") + text.data());
        }
        return result;
    }

    int Checked(int result) {
        if (result < 0) {
            throw std::runtime_error(std::string("ffms2: ") + text.data());
        }
        return result;
    }
};

using IndexPtr = std::unique_ptr<FFMS_Index, void (*)(FFMS_Index*)>;

IndexPtr MakeIndex(const std::string& path, Failure& failure) {
    FFMS_Indexer* indexer = failure.Checked(FFMS_CreateIndexer(path.c_str(), &failure.info));
    // It ends the indexer, whatever comes of it.
    return {failure.Checked(FFMS_DoIndexing2(indexer, FFMS_IEH_ABORT, &failure.info)),
            FFMS_DestroyIndex};
}

} // namespace

Ffms2VideoReader::Ffms2VideoReader(const std::string& path)
    : m_source(nullptr, FFMS_DestroyVideoSource) {
    static const bool started = (FFMS_Init(0, 0), true);
    static_cast<void>(started);
    Failure failure;
    const IndexPtr index = MakeIndex(path, failure);
    const int track =
        failure.Checked(FFMS_GetFirstTrackOfType(index.get(), FFMS_TYPE_VIDEO, &failure.info));
    m_source.reset(failure.Checked(FFMS_CreateVideoSource(path.c_str(), track, index.get(), 0,
                                                          FFMS_SEEK_NORMAL, &failure.info)));
    const FFMS_Frame* frame = failure.Checked(FFMS_GetFrame(m_source.get(), 0, &failure.info));
    m_width = frame->EncodedWidth;
    m_height = frame->EncodedHeight;
    // It takes what says nothing of its colours for BT.601 at any size.
    if (frame->ColorSpace == AVCOL_SPC_UNSPECIFIED && m_height > 720) {
        failure.Checked(-FFMS_SetInputFormatV(m_source.get(), AVCOL_SPC_BT709, AVCOL_RANGE_MPEG,
                                              FFMS_GetPixFmt("yuv420p"), &failure.info));
    }
    const std::array<int, 2> formats{FFMS_GetPixFmt("bgra"), -1};
    failure.Checked(-FFMS_SetOutputFormatV2(m_source.get(), formats.data(), m_width, m_height,
                                            FFMS_RESIZER_POINT, &failure.info));
}

ShownPicture Ffms2VideoReader::Show(int number) {
    Failure failure;
    const FFMS_Frame* frame = failure.Checked(FFMS_GetFrame(m_source.get(), number, &failure.info));
    return {frame->Data[0], frame->Linesize[0], m_width, m_height, 4};
}
