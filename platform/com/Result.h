// What calls of the platform answer. Stands for winerror.h.
#pragma once

#include <cstdint>

// A result, tested by its sign alone: negative is a failure.
using HRESULT = std::int32_t;

constexpr bool SUCCEEDED(HRESULT result) {
    return result >= 0;
}

constexpr bool FAILED(HRESULT result) {
    return result < 0;
}

namespace com {

// The result with the number that is printed for it, 0x8....... for a failure.
constexpr HRESULT ResultOf(std::uint32_t number) {
    return static_cast<HRESULT>(number);
}

} // namespace com

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = com::ResultOf(0x80004001);
inline constexpr HRESULT E_NOINTERFACE = com::ResultOf(0x80004002);
inline constexpr HRESULT E_POINTER = com::ResultOf(0x80004003);
inline constexpr HRESULT E_ABORT = com::ResultOf(0x80004004);
inline constexpr HRESULT E_BOUNDS = com::ResultOf(0x8000000B);
inline constexpr HRESULT E_FAIL = com::ResultOf(0x80004005);
inline constexpr HRESULT E_UNEXPECTED = com::ResultOf(0x8000FFFF);
inline constexpr HRESULT RPC_E_CHANGED_MODE = com::ResultOf(0x80010106);
inline constexpr HRESULT DISP_E_TYPEMISMATCH = com::ResultOf(0x80020005);
inline constexpr HRESULT DISP_E_OVERFLOW = com::ResultOf(0x8002000A);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = com::ResultOf(0x80040110);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = com::ResultOf(0x80040154);
inline constexpr HRESULT E_HANDLE = com::ResultOf(0x80070006);
inline constexpr HRESULT E_OUTOFMEMORY = com::ResultOf(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = com::ResultOf(0x80070057);
