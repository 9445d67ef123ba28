#include "platform/mf/VideoSamples.h"

#include <algorithm>
#include <limits>

#include "platform/mf/ColourValues.h"
#include "platform/mf/MediaFormats.h"
#include "platform/mf/SourceReader.h"

namespace mf {

// Times of pictures are rational; in units of 100 ns they are rounded down. A reader that works
// with such times therefore takes a sample with time s and duration d to hold from s - 1 on and to
// the unit before s + d. So that it finds each time in exactly one sample, whichever it looks at
// first, a picture shown in [start, end) becomes a sample of time start that lasts to end - 1,
// where the next one, taken that way, begins. Nothing follows the last picture, so it keeps the
// whole of its time.
LONGLONG VideoSamples::DurationOf(const av::PicturePtr& picture) const {
    const LONGLONG whole = picture->End() - picture->Start();
    return m_lastGiven || m_stream.AtEnd() ? whole : std::max<LONGLONG>(whole - 1, 1);
}

HRESULT VideoSamples::SetPosition(LONGLONG position) {
    m_position = std::min(position, std::numeric_limits<LONGLONG>::max() - 1);
    m_lastGiven = false;
    return S_OK;
}

av::ReadResult VideoSamples::ReadPicture(av::PicturePtr& picture) {
    if (m_lastGiven) {
        return av::ReadResult::End;
    }
    if (!m_position) {
        return m_stream.Read(picture);
    }
    const LONGLONG position = *m_position;
    m_position.reset();
    return m_last.IsAtOrBefore(position) ? ReadLast(position, picture)
                                         : ReadAtPosition(position, picture);
}

// By the same rule the sample that holds a position is the picture shown one unit later; behind the
// last picture's last unit there is none, and the position itself is asked for.
av::ReadResult VideoSamples::ReadAtPosition(LONGLONG position, av::PicturePtr& picture) {
    for (const LONGLONG time : {position + 1, position}) {
        if (!m_stream.Seek(time)) {
            return av::ReadResult::Failed;
        }
        const av::ReadResult result = m_stream.Read(picture);
        if (result != av::ReadResult::End) {
            return result;
        }
    }
    return ReadLast(position, picture);
}

// A reader must learn from its next sample where it is, or it takes itself to be at the start and
// waits there for what comes no more. So it gets a sample before the position, the last one.
av::ReadResult VideoSamples::ReadLast(LONGLONG position, av::PicturePtr& picture) {
    picture = m_last.Find(m_shown, position);
    m_lastGiven = true;
    return picture != nullptr ? av::ReadResult::Picture : av::ReadResult::End;
}

SampleRead VideoSamples::Read() {
    SampleRead read;
    av::PicturePtr picture;
    const av::ReadResult result = ReadPicture(picture);
    if (result == av::ReadResult::End) {
        read.flags = MF_SOURCE_READERF_ENDOFSTREAM;
    } else if (result == av::ReadResult::Failed) {
        read.flags = MF_SOURCE_READERF_ERROR;
        read.result = E_FAIL;
    } else {
        const bool first = !m_inMemory;
        m_shown = picture->Start();
        read.time = picture->Start();
        read.result = MakeSample(picture, read.sample);
        read.flags = first ? MF_SOURCE_READERF_CURRENTMEDIATYPECHANGED : 0;
    }
    return read;
}

HRESULT VideoSamples::MakeSample(const av::PicturePtr& picture, com::ComPtr<IMFSample>& sample) {
    if (!m_inMemory) {
        const PixelSize own{picture->Width(), picture->Height()};
        m_inMemory = SizeIn(m_format.layout, m_format.size.value_or(own));
        // Looking at every picture for its rules would decode every picture.
        m_rules = av::ColourRulesOf(picture->Frame());
    }
    com::ComPtr<IMFMediaBuffer> buffer;
    HRESULT result = CreatePictureBuffer(picture, m_format.layout, *m_inMemory,
                                         m_format.device.Get(), buffer.Put());
    if (SUCCEEDED(result)) {
        result = MFCreateSample(sample.Put());
    }
    if (FAILED(result)) {
        return result;
    }
    sample->SetSampleTime(picture->Start());
    sample->SetSampleDuration(DurationOf(picture));
    result = sample->AddBuffer(buffer.Get());
    if (FAILED(result)) {
        sample.Reset();
    }
    return result;
}

void VideoSamples::Describe(IMFMediaType& type) const {
    if (m_inMemory) {
        MFSetAttributeSize(&type, MF_MT_FRAME_SIZE, static_cast<UINT32>(m_inMemory->width),
                           static_cast<UINT32>(m_inMemory->height));
    }
    if (m_rules && m_format.layout == PixelLayout::Nv12) {
        SetColour(type, *m_rules);
    }
}

} // namespace mf
