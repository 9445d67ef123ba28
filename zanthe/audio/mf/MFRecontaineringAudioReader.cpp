#include "zanthe/audio/mf/MFRecontaineringAudioReader.h"

#include <stdexcept>

#include "platform/win32/Path.h"
#include "zanthe/audio/mf/MediaFoundationBackends.h"
#include "zanthe/audio/mf/RecontainerFile.h"
#include "zanthe/h264/Mp4Track.h"

namespace Zanthe {

namespace {

bool CopySoundTrack(const std::string& from, const std::string& to) {
    const Mp4FileOwner source = OpenMp4File(win32::ExistingPath(from));
    if (source == nullptr) {
        return false;
    }
    const MP4TrackId track = MP4FindTrackId(source.get(), 0, MP4_AUDIO_TRACK_TYPE, 0);
    if (track == MP4_INVALID_TRACK_ID) {
        return false;
    }
    const Mp4FileOwner copy(MP4Create(to.c_str(), 0));
    if (copy == nullptr) {
        return false;
    }
    MP4SetTimeScale(copy.get(), MP4GetTimeScale(source.get()));
    return MP4CopyTrack(source.get(), track, copy.get(), false) != MP4_INVALID_TRACK_ID;
}

} // namespace

MFRecontaineringAudioReader::MFRecontaineringAudioReader(const std::string& path,
                                                         const std::string& temporaryFolder,
                                                         int sampleRate)
    : MFRecontaineringAudioReader(path, temporaryFolder, sampleRate, MediaFoundationBackends(),
                                  WindowsVersionProvider()) {}

MFRecontaineringAudioReader::MFRecontaineringAudioReader(
    const std::string& path, const std::string& temporaryFolder, int sampleRate,
    const IMediaFoundationBackends& backends, const IWindowsVersionProvider& versionProvider)
    : m_file(std::make_unique<RecontainerFile>(temporaryFolder)) {
    if (m_file->Path().empty() || !CopySoundTrack(path, m_file->Path())) {
        throw std::runtime_error("Error re-containering audio!!");
    }
    m_reader = CreateReaderBySystemVersion(m_file->Path(), sampleRate, backends, versionProvider);
    if (m_reader == nullptr) {
        throw std::runtime_error("Error creating reader for re-containered audio!!");
    }
}

MFRecontaineringAudioReader::~MFRecontaineringAudioReader() = default;

unsigned int MFRecontaineringAudioReader::FillAudioBuffer(std::int64_t startFrame,
                                                          unsigned int frameCount,
                                                          std::vector<float*>& channels) {
    return m_reader->FillAudioBuffer(startFrame, frameCount, channels);
}

} // namespace Zanthe
