#include "zanthe/h264/PropVariantHelper.h"

namespace Zanthe {

namespace {

// Where a time comes from a file its sum can leave 64 bits; it wraps then, as unsigned numbers do.
std::int64_t WrappingSum(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
}

} // namespace

PropVariantHelper::PropVariantHelper() {
    PropVariantInit(&m_variant);
}

PropVariantHelper::PropVariantHelper(std::int64_t value)
    : PropVariantHelper() {
    m_variant.vt = VT_I8;
    m_variant.hVal.QuadPart = value;
}

PropVariantHelper::~PropVariantHelper() {
    PropVariantClear(&m_variant);
}

PropVariantHelper::operator std::int64_t() const {
    LONGLONG value = 0;
    return SUCCEEDED(PropVariantToInt64(m_variant, &value)) ? value : 0;
}

bool PropVariantHelper::operator==(const PropVariantHelper& other) const {
    return static_cast<std::int64_t>(*this) == static_cast<std::int64_t>(other);
}

PropVariantHelper& PropVariantHelper::operator+=(std::int64_t addend) {
    const std::int64_t sum = WrappingSum(*this, addend);
    PropVariantClear(&m_variant);
    m_variant.vt = VT_I8;
    m_variant.hVal.QuadPart = sum;
    return *this;
}

PropVariantHelper::operator tagPROPVARIANT*() {
    return &m_variant;
}

PropVariantHelper::operator tagPROPVARIANT*() const {
    return &m_variant;
}

} // namespace Zanthe
