#include "platform/win32/IniFile.h"

#include <cstring>
#include <istream>
#include <string_view>
#include <utility>

#include <ini.h>

namespace win32 {

namespace {

struct Parse {
    std::istream& stream;
    std::string section;
    std::vector<IniValue> values;
};

constexpr std::string_view Blanks = " \t\r\v\f";
constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";

// The parser hands on at most 49 bytes of a section's name, and registry keys are longer. The name
// is therefore taken here, from the line on its way to the parser.
void NoteSection(Parse& parse, std::string_view line) {
    if (line.substr(0, ByteOrderMark.size()) == ByteOrderMark) {
        line.remove_prefix(ByteOrderMark.size());
    }
    const std::size_t open = line.find_first_not_of(Blanks);
    if (open == std::string_view::npos || line[open] != '[') {
        return;
    }
    const std::size_t close = line.find(']', open);
    if (close != std::string_view::npos) {
        parse.section = line.substr(open + 1, close - open - 1);
    }
}

// One line for the parser, in the manner of fgets.
char* NextLine(char* buffer, int capacity, void* user) {
    auto& parse = *static_cast<Parse*>(user);
    std::string line;
    if (!std::getline(parse.stream, line)) {
        return nullptr;
    }
    // Leading blanks would make the line another value of the name above it.
    line.erase(0, line.find_first_not_of(Blanks));
    // The parser would take the rest of a line that it cannot hold for a line of its own.
    if (line.size() + 2 > static_cast<std::size_t>(capacity)) {
        line.clear();
    }
    NoteSection(parse, line);
    line += '\n';
    std::memcpy(buffer, line.c_str(), line.size() + 1);
    return buffer;
}

int TakeValue(void* user, const char*, const char* name, const char* value) {
    auto& parse = *static_cast<Parse*>(user);
    parse.values.push_back({parse.section, name, value});
    return 1;
}

} // namespace

std::vector<IniValue> ReadIni(std::istream& stream) {
    Parse parse{stream, {}, {}};
    ini_parse_stream(NextLine, &parse, TakeValue, &parse);
    return std::move(parse.values);
}

} // namespace win32
