// What calls on streams and storages answer beside the general results. Stands for winerror.h.
#pragma once

#include "platform/com/Result.h"

inline constexpr HRESULT STG_E_INVALIDFUNCTION = com::ResultOf(0x80030001);
inline constexpr HRESULT STG_E_FILENOTFOUND = com::ResultOf(0x80030002);
inline constexpr HRESULT STG_E_ACCESSDENIED = com::ResultOf(0x80030005);
inline constexpr HRESULT STG_E_INVALIDPOINTER = com::ResultOf(0x80030009);
inline constexpr HRESULT STG_E_READFAULT = com::ResultOf(0x8003001E);
inline constexpr HRESULT STG_E_FILEALREADYEXISTS = com::ResultOf(0x80030050);
inline constexpr HRESULT STG_E_INVALIDHEADER = com::ResultOf(0x800300FB);
inline constexpr HRESULT STG_E_INVALIDNAME = com::ResultOf(0x800300FC);
