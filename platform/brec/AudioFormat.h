// The form in which a recording's sound is wanted. One of the calls of the recording library.
#pragma once

namespace BREC {

// A value.
class AudioFormat {
public:
    // Interleaved signed 16-bit samples; sampleRate in Hz. Rate and count are taken as they are.
    static AudioFormat create16BitSignedInterleaved(int sampleRate, int channelCount) {
        return {sampleRate, channelCount};
    }

    int sampleRate() const { return m_sampleRate; } // Hz

    int channelCount() const { return m_channelCount; }

private:
    AudioFormat(int sampleRate, int channelCount)
        : m_sampleRate(sampleRate)
        , m_channelCount(channelCount) {}

    int m_sampleRate;
    int m_channelCount;
};

} // namespace BREC
