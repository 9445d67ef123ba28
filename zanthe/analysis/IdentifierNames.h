// Identifiers as texts for people.
#pragma once

#include <string>

#include "platform/com/Guid.h"

// As "{E436EBB5-524F-11CE-9F53-0020AF0BA770}", in capitals.
std::string GuidText(const GUID& id);

// The name of the constant, as "MEDIASUBTYPE_Avi", for each subtype that DetectMediaSubtype
// answers; GuidText for any other.
std::string SubtypeName(const GUID& subtype);
