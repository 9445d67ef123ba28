#pragma once

#include <unistd.h>

// Root may read and write everything; while this lives, a test that root runs is nobody in
// particular. For anyone else it changes nothing.
class WithoutPrivileges {
public:
    WithoutPrivileges()
        : m_before(geteuid())
        , m_changed(m_before == 0 && seteuid(65534) == 0) {}

    WithoutPrivileges(const WithoutPrivileges&) = delete;
    WithoutPrivileges& operator=(const WithoutPrivileges&) = delete;

    ~WithoutPrivileges() {
        if (m_changed) {
            (void)!seteuid(m_before);
        }
    }

private:
    uid_t m_before;
    bool m_changed;
};
