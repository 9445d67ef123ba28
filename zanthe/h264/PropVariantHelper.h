// A PROPVARIANT that holds a time, given back by itself.
//
//     PropVariantHelper position(50'000'000);
//     reader->SetCurrentPosition(GUID_NULL, *static_cast<PROPVARIANT*>(position));
#pragma once

#include <cstdint>

#include "platform/com/PropVariant.h"
#include "zanthe/core/Export.h"

namespace Zanthe {

// It is as large as the PROPVARIANT in it.
//
// Thread-safety: none.
class ZANTHE_API PropVariantHelper {
public:
    PropVariantHelper(); // VT_EMPTY

    // VT_I8 with `value`. Implicit, since it stands for the number.
    PropVariantHelper(std::int64_t value); // NOLINT(google-explicit-constructor)

    PropVariantHelper(const PropVariantHelper&) = delete;
    PropVariantHelper& operator=(const PropVariantHelper&) = delete;

    // Gives back whatever the value owns.
    ~PropVariantHelper();

    // The value as a 64-bit number; 0 where it is none.
    operator std::int64_t() const; // NOLINT(google-explicit-constructor)

    // Compares the two as 64-bit numbers.
    bool operator==(const PropVariantHelper& other) const;

    // Becomes VT_I8 with the sum of the value as a number and `addend`; a sum that 64 bits do not
    // hold wraps.
    PropVariantHelper& operator+=(std::int64_t addend);

    // The PROPVARIANT itself, for calls that read or write one; it stays this object's.
    operator tagPROPVARIANT*();       // NOLINT(google-explicit-constructor)
    operator tagPROPVARIANT*() const; // NOLINT(google-explicit-constructor)

private:
    // Calls that only read it take a pointer that could write as well.
    mutable PROPVARIANT m_variant;
};

} // namespace Zanthe
