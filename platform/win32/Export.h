// Marks the platform functions that hosts call too, so libzanthe.so shows them.
#pragma once

#define PLATFORM_API __attribute__((visibility("default")))
