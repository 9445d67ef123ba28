// How the commands print JSON: one object on one line.
#pragma once

#include <ostream>

#include <nlohmann/json.hpp>

namespace Program {

using Json = nlohmann::ordered_json; // keys stay in the order in which they were given

// Bytes that are not UTF-8, which a file's name may hold, come out as U+FFFD.
inline void PrintJsonLine(const Json& json, std::ostream& out) {
    out << json.dump(-1, ' ', false, Json::error_handler_t::replace) << '\n';
}

} // namespace Program
