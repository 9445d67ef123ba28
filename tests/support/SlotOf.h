// Where a virtual operation stands in the table of its class. Hosts call through that order.
#pragma once

#if defined(__x86_64__)

#include <cstddef>
#include <cstring>
#include <type_traits>

// A pointer to a virtual member function holds 1 + the offset of its slot in the table of the
// class, here in the ABI of this system. A destructor takes the first two slots.
template <typename Member>
std::ptrdiff_t SlotOf(Member member) {
    static_assert(std::is_member_function_pointer_v<Member>);
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof(word));
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

#endif
