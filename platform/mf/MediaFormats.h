// The keys and values that media types and samples are told by. Stands for the GUIDs of mfapi.h and
// the enumerations of mfobjects.h.
#pragma once

#include "platform/com/Guid.h"
#include "platform/dshow/CodedSubtype.h"
#include "platform/win32/Types.h"

// Keys; each with the type of its value.
inline constexpr GUID MF_MT_MAJOR_TYPE = { // GUID
    0x48EBA18E,
    0xF8C9,
    0x4687,
    {0xBF, 0x11, 0x0A, 0x74, 0xC9, 0xF9, 0x6A, 0x8F}};
inline constexpr GUID MF_MT_SUBTYPE = { // GUID
    0xF7E34C9A,
    0x42E8,
    0x4714,
    {0xB7, 0x4B, 0xCB, 0x29, 0xD7, 0x2C, 0x35, 0xE5}};
inline constexpr GUID MF_MT_ALL_SAMPLES_INDEPENDENT = { // UINT32
    0xC9173739,
    0x5E56,
    0x461C,
    {0xB7, 0x13, 0x46, 0xFB, 0x99, 0x5C, 0xB9, 0x5F}};
inline constexpr GUID MF_MT_FIXED_SIZE_SAMPLES = { // UINT32
    0xB8EBEFAF,
    0xB718,
    0x4E04,
    {0xB0, 0xA9, 0x11, 0x67, 0x75, 0xE3, 0x32, 0x1B}};
inline constexpr GUID MF_MT_FRAME_SIZE = { // UINT64: width and height
    0x1652C33D,
    0xD6B2,
    0x4012,
    {0xB8, 0x34, 0x72, 0x03, 0x08, 0x49, 0xA3, 0x7D}};
inline constexpr GUID MF_MT_FRAME_RATE = { // UINT64: numerator and denominator
    0xC459A2E8,
    0x3D2C,
    0x4E44,
    {0xB1, 0x32, 0xFE, 0xE5, 0x15, 0x6C, 0x7B, 0xB0}};
inline constexpr GUID MF_MT_PIXEL_ASPECT_RATIO = { // UINT64: numerator and denominator
    0xC6376A1E,
    0x8D0A,
    0x4027,
    {0xBE, 0x45, 0x6D, 0x9A, 0x0A, 0xD3, 0x9B, 0xB6}};
inline constexpr GUID MF_MT_INTERLACE_MODE = { // UINT32: MFVideoInterlaceMode
    0xE2724BB8,
    0xE676,
    0x4806,
    {0xB4, 0xB2, 0xA8, 0xD6, 0xEF, 0xB4, 0x4C, 0xCD}};
inline constexpr GUID MF_MT_DEFAULT_STRIDE = { // UINT32: bytes from row to row, signed
    0x644B4E48,
    0x1E02,
    0x4516,
    {0xB0, 0xEB, 0xC0, 0x1C, 0xA9, 0xD4, 0x9A, 0xC6}};
inline constexpr GUID MF_MT_MPEG_SEQUENCE_HEADER = { // bytes
    0x3C036DE7,
    0x3AD0,
    0x4C9E,
    {0x92, 0x16, 0xEE, 0x6D, 0x6A, 0xC2, 0x1C, 0xB3}};
inline constexpr GUID MF_MT_YUV_MATRIX = { // UINT32: MFVideoTransferMatrix
    0x3E23D450,
    0x2C75,
    0x4D25,
    {0xA0, 0x0E, 0xB9, 0x16, 0x70, 0xD1, 0x23, 0x27}};
inline constexpr GUID MF_MT_VIDEO_NOMINAL_RANGE = { // UINT32: MFNominalRange
    0xC21B8EE5,
    0xB956,
    0x4071,
    {0x8D, 0xAF, 0x32, 0x5E, 0xDF, 0x5C, 0xAB, 0x11}};
inline constexpr GUID MF_MT_VIDEO_ROTATION = { // UINT32: MFVideoRotationFormat
    0xC380465D,
    0x2271,
    0x428C,
    {0x9B, 0x83, 0xEC, 0xEA, 0x3B, 0x4A, 0x85, 0xC1}};
inline constexpr GUID MF_MT_AUDIO_NUM_CHANNELS = { // UINT32
    0x37E48BF5,
    0x645E,
    0x4C5B,
    {0x89, 0xDE, 0xAD, 0xA9, 0xE2, 0x9B, 0x69, 0x6A}};
inline constexpr GUID MF_MT_AUDIO_SAMPLES_PER_SECOND = { // UINT32
    0x5FAEEAE7,
    0x0290,
    0x4C31,
    {0x9E, 0x8A, 0xC5, 0x34, 0xF6, 0x8D, 0x9D, 0xBA}};
inline constexpr GUID MF_MT_AUDIO_BITS_PER_SAMPLE = { // UINT32
    0xF2DEB57F,
    0x40FA,
    0x4764,
    {0xAA, 0x33, 0xED, 0x4F, 0x2D, 0x1F, 0xF6, 0x69}};
inline constexpr GUID MF_MT_AUDIO_BLOCK_ALIGNMENT = { // UINT32
    0x322DE230,
    0x9EEB,
    0x43BD,
    {0xAB, 0x7A, 0xFF, 0x41, 0x22, 0x51, 0x54, 0x1D}};
inline constexpr GUID MF_MT_AUDIO_AVG_BYTES_PER_SECOND = { // UINT32
    0x1AAB75C8,
    0xCFEF,
    0x451C,
    {0xAB, 0x95, 0xAC, 0x03, 0x4B, 0x8E, 0x17, 0x31}};
inline constexpr GUID MF_MT_AUDIO_CHANNEL_MASK = { // UINT32: SPEAKER_... of each channel
    0x55FB5765,
    0x644A,
    0x4CAF,
    {0x84, 0x79, 0x93, 0x89, 0x83, 0xBB, 0x15, 0x88}};
inline constexpr GUID MF_MT_AUDIO_VALID_BITS_PER_SAMPLE = { // UINT32
    0xD9BF8D6A,
    0x9530,
    0x4B7C,
    {0x9D, 0xDF, 0xFF, 0x6F, 0xD5, 0x8B, 0xBD, 0x06}};

// Of a sample, UINT32: whether nothing before it is needed to decode it.
inline constexpr GUID MFSampleExtension_CleanPoint = {
    0x9CDF01D8, 0xA0F0, 0x43BA, {0xB0, 0x77, 0xEA, 0xA0, 0x6C, 0xBD, 0x72, 0x8A}};

// Major types.
inline constexpr GUID MFMediaType_Video = CodedSubtype("vids");
inline constexpr GUID MFMediaType_Audio = CodedSubtype("auds");

// Pictures in memory: 4 bytes a pixel, blue first, and alpha or nothing last; luma rows, then rows
// of interleaved chroma of half the size.
inline constexpr GUID MFVideoFormat_ARGB32 = CodedSubtype(21);
inline constexpr GUID MFVideoFormat_RGB32 = CodedSubtype(22);
inline constexpr GUID MFVideoFormat_NV12 = CodedSubtype("NV12");

// Compressed pictures. H264_ES and HEVC_ES are streams of their own, in no container.
inline constexpr GUID MFVideoFormat_H264 = CodedSubtype("H264");
inline constexpr GUID MFVideoFormat_H264_ES = {
    0x3F40F4F0, 0x5622, 0x4FF8, {0xB6, 0xD8, 0xA1, 0x7A, 0x58, 0x4B, 0xEE, 0x5E}};
inline constexpr GUID MFVideoFormat_HEVC = CodedSubtype("HEVC");
inline constexpr GUID MFVideoFormat_HEVC_ES = CodedSubtype("HEVS");
inline constexpr GUID MFVideoFormat_MP4V = CodedSubtype("MP4V");
inline constexpr GUID MFVideoFormat_M4S2 = CodedSubtype("M4S2");
inline constexpr GUID MFVideoFormat_MP43 = CodedSubtype("MP43");
inline constexpr GUID MFVideoFormat_H263 = CodedSubtype("H263");
inline constexpr GUID MFVideoFormat_WMV1 = CodedSubtype("WMV1");
inline constexpr GUID MFVideoFormat_WMV2 = CodedSubtype("WMV2");
inline constexpr GUID MFVideoFormat_WMV3 = CodedSubtype("WMV3");
inline constexpr GUID MFVideoFormat_WVC1 = CodedSubtype("WVC1");
inline constexpr GUID MFVideoFormat_MPG1 = CodedSubtype("MPG1");
inline constexpr GUID MFVideoFormat_MPEG2 = {
    0xE06D8026, 0xDB46, 0x11CF, {0xB4, 0xD1, 0x00, 0x80, 0x5F, 0x6C, 0xBB, 0xEA}};
inline constexpr GUID MFVideoFormat_DVSD = CodedSubtype("dvsd");
inline constexpr GUID MFVideoFormat_MJPG = CodedSubtype("MJPG");
inline constexpr GUID MFVideoFormat_VP80 = CodedSubtype("VP80");
inline constexpr GUID MFVideoFormat_VP90 = CodedSubtype("VP90");
inline constexpr GUID MFVideoFormat_AV1 = CodedSubtype("AV01");

// Sound in memory, by its WAVE_FORMAT tag.
inline constexpr GUID MFAudioFormat_PCM = CodedSubtype(1);
inline constexpr GUID MFAudioFormat_Float = CodedSubtype(3);

// Compressed sound.
inline constexpr GUID MFAudioFormat_AAC = CodedSubtype(0x1610);
inline constexpr GUID MFAudioFormat_ADTS = CodedSubtype(0x1600);
inline constexpr GUID MFAudioFormat_MPEG = CodedSubtype(0x50);
inline constexpr GUID MFAudioFormat_MP3 = CodedSubtype(0x55);
inline constexpr GUID MFAudioFormat_DTS = CodedSubtype(0x8);
inline constexpr GUID MFAudioFormat_ALAC = CodedSubtype(0x6C61);
inline constexpr GUID MFAudioFormat_FLAC = CodedSubtype(0xF1AC);
inline constexpr GUID MFAudioFormat_Opus = CodedSubtype(0x704F);
inline constexpr GUID MFAudioFormat_AMR_NB = CodedSubtype(0x7361);
inline constexpr GUID MFAudioFormat_AMR_WB = CodedSubtype(0x7362);
inline constexpr GUID MFAudioFormat_MSP1 = CodedSubtype(0xA);
inline constexpr GUID MFAudioFormat_WMAudioV8 = CodedSubtype(0x161);
inline constexpr GUID MFAudioFormat_WMAudioV9 = CodedSubtype(0x162);
inline constexpr GUID MFAudioFormat_WMAudio_Lossless = CodedSubtype(0x163);
inline constexpr GUID MFAudioFormat_Dolby_AC3 = {
    0xE06D802C, 0xDB46, 0x11CF, {0xB4, 0xD1, 0x00, 0x80, 0x5F, 0x6C, 0xBB, 0xEA}};
inline constexpr GUID MFAudioFormat_Dolby_DDPlus = {
    0xA7FB87AF, 0x2D02, 0x42FB, {0xA4, 0xD4, 0x05, 0xCD, 0x93, 0x84, 0x3B, 0xDD}};

enum MFVideoInterlaceMode : UINT32 {
    MFVideoInterlace_Unknown = 0,
    MFVideoInterlace_Progressive = 2,
    MFVideoInterlace_FieldInterleavedUpperFirst = 3,
    MFVideoInterlace_FieldInterleavedLowerFirst = 4,
    MFVideoInterlace_MixedInterlaceOrProgressive = 7,
};

enum MFVideoTransferMatrix : UINT32 {
    MFVideoTransferMatrix_Unknown = 0,
    MFVideoTransferMatrix_BT709 = 1,
    MFVideoTransferMatrix_BT601 = 2,
    MFVideoTransferMatrix_SMPTE240M = 3,
    MFVideoTransferMatrix_BT2020_10 = 4,
    MFVideoTransferMatrix_BT2020_12 = 5,
};

enum MFNominalRange : UINT32 {
    MFNominalRange_Unknown = 0,
    MFNominalRange_Normal = 1,
    MFNominalRange_Wide = 2,
    MFNominalRange_0_255 = 1,
    MFNominalRange_16_235 = 2,
    MFNominalRange_48_208 = 3,
    MFNominalRange_64_127 = 4,
};

// Clockwise degrees that a picture is to be turned by.
enum MFVideoRotationFormat : UINT32 {
    MFVideoRotationFormat_0 = 0,
    MFVideoRotationFormat_90 = 90,
    MFVideoRotationFormat_180 = 180,
    MFVideoRotationFormat_270 = 270,
};
