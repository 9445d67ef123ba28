// What calls of Media Foundation answer when they fail. Stands for mferror.h.
#pragma once

#include "platform/com/Result.h"

inline constexpr HRESULT MF_E_BUFFERTOOSMALL = com::ResultOf(0xC00D36B1);
inline constexpr HRESULT MF_E_INVALIDREQUEST = com::ResultOf(0xC00D36B2);
inline constexpr HRESULT MF_E_INVALIDSTREAMNUMBER = com::ResultOf(0xC00D36B3);
inline constexpr HRESULT MF_E_INVALIDMEDIATYPE = com::ResultOf(0xC00D36B4);
inline constexpr HRESULT MF_E_NOTACCEPTING = com::ResultOf(0xC00D36B5);
inline constexpr HRESULT MF_E_NO_MORE_TYPES = com::ResultOf(0xC00D36B9);
inline constexpr HRESULT MF_E_UNSUPPORTED_SERVICE = com::ResultOf(0xC00D36BA);
inline constexpr HRESULT MF_E_INVALIDTYPE = com::ResultOf(0xC00D36BD);
inline constexpr HRESULT MF_E_INVALIDINDEX = com::ResultOf(0xC00D36BF);
inline constexpr HRESULT MF_E_UNSUPPORTED_BYTESTREAM_TYPE = com::ResultOf(0xC00D36C4);
inline constexpr HRESULT MF_E_UNSUPPORTED_TIME_FORMAT = com::ResultOf(0xC00D36C5);
inline constexpr HRESULT MF_E_NO_SAMPLE_TIMESTAMP = com::ResultOf(0xC00D36C8);
inline constexpr HRESULT MF_E_NO_SAMPLE_DURATION = com::ResultOf(0xC00D36C9);
inline constexpr HRESULT MF_E_NOT_FOUND = com::ResultOf(0xC00D36D5);
inline constexpr HRESULT MF_E_INVALID_POSITION = com::ResultOf(0xC00D36E5);
inline constexpr HRESULT MF_E_ATTRIBUTENOTFOUND = com::ResultOf(0xC00D36E6);
inline constexpr HRESULT MF_E_TOPO_CODEC_NOT_FOUND = com::ResultOf(0xC00D5212);
inline constexpr HRESULT MF_E_TRANSFORM_TYPE_NOT_SET = com::ResultOf(0xC00D6D60);
inline constexpr HRESULT MF_E_SHUTDOWN = com::ResultOf(0xC00D3E85);
inline constexpr HRESULT MF_E_TRANSFORM_NEED_MORE_INPUT = com::ResultOf(0xC00D6D72);
inline constexpr HRESULT MF_E_DXGI_DEVICE_NOT_INITIALIZED = com::ResultOf(0x80041000);
inline constexpr HRESULT MF_E_DXGI_NEW_VIDEO_DEVICE = com::ResultOf(0x80041001);
inline constexpr HRESULT MF_E_DXGI_VIDEO_DEVICE_LOCKED = com::ResultOf(0x80041002);
