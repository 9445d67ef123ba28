// A media path that may name one stream inside a recording: the recording's own path, an
// exclamation mark, and the name of a member.
//
//     const RecordingPath path(std::wstring(L"d:/a/b.brec!video2.mp4"));
//     path.GetContainerPath()     // d:/a/b.brec, the file to open
//     path.kind, path.index       // NumberedVideo, 2
//
// A plain path is its own container, with kind NoMember.
#pragma once

#include <cstdint>
#include <string>

// What a member of a recording is. The first three carry a number in their name.
enum RecordingMember : std::int32_t {
    NoMember = 0,
    NumberedVideo = 1,       // video0.mp4
    NumberedAudio = 2,       // audio0.mp4
    NumberedScreenTrack = 3, // track0.bsc2
    ScreenVideo = 4,         // Screen_Stream.avi
    CameraVideo = 5,         // Camera_Stream.wmv
    MicrophoneAudio = 6,     // Audio.wav
    SystemAudio = 7,         // SysAudio.wav
    EventData = 8,           // Events.dat
    Manifest = 9,            // manifest.orixml
};

// Thread-safety: a value; parsing shares no state.
class RecordingPath {
public:
    // Parses a path with slashes of either kind. Never fails; the file need not exist.
    explicit RecordingPath(const std::wstring& path);

    // The same for UTF-8.
    explicit RecordingPath(const std::string& path);

    // The text behind the last "." of `name`, in its own case; empty without a dot.
    std::wstring GetExtension() const;

    // The path of the file to open: `directory` and `name`.
    std::wstring GetContainerPath() const;

    // What the member of this name is, a RecordingMember. Names are compared with regard to case.
    //
    // For a numbered member *index becomes the character behind the prefix minus '0'. Whether that
    // is a digit is not asked, so "videoX.mp4" is a numbered video all the same; that no such
    // stream exists shows when it is looked for. Otherwise *index is untouched. May be null.
    static std::int32_t ClassifyMember(const std::wstring& member, std::int32_t* index);

    std::wstring directory;      // up to the last slash and with it; empty without one
    std::int32_t kind = 0;       // a RecordingMember
    std::wstring fileName;       // behind the last slash, the member with it
    std::wstring name;           // fileName without a recognised member and its "!"
    std::int32_t index = 0;      // number of the stream within its kind, one digit; 0 without
    std::int32_t memberCode = 0; // by the member's first letter: S 100, C 101, $ 102, M 103, V 104,
                                 // A 105; 0 for any other

private:
    void SplitDirectory(const std::wstring& path);
    void SplitMember();
};
