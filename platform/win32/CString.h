// The wide text that some exported classes take. Stands for CStringW of atlstr.h.
#pragma once

#include <string>

using CStringW = std::wstring;
