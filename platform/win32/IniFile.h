// The values of an INI file, in the order of the file.
//
//     [HKEY_LOCAL_MACHINE\SOFTWARE\Vendor]    ; a section's name may be of any length
//     InstallMode = dword:00000001
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace win32 {

struct IniValue {
    std::string section; // without its brackets; empty above the first section
    std::string name;
    std::string value; // without the blanks around it and without a comment after it
};

// Every value of `stream`, read to its end. What makes no sense as a value is left out, and so is
// a line of more than 198 bytes. A byte order mark at the start is passed over.
//
// Thread-safety: safe from any thread, on different streams.
std::vector<IniValue> ReadIni(std::istream& stream);

} // namespace win32
