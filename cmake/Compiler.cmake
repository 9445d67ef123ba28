# What every target of ours is compiled with. Users of the installed library inherit none of it.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

find_program(ZANTHE_CCACHE ccache)
if(ZANTHE_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ZANTHE_CCACHE})
endif()

add_library(zanthe_settings INTERFACE)
target_compile_options(zanthe_settings INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align
    -Wformat=2 -Werror
    # FFmpeg's AVERROR and tag macros are C: they cast as C does.
    -Wno-old-style-cast)

# A library with an unresolved symbol must fail when it is linked, not when a host loads it.
# Sanitized objects resolve theirs from the runtime in the program, so there it cannot be asked.
set(ZANTHE_NO_UNDEFINED -Wl,--no-undefined)
if(ZANTHE_SANITIZE)
    set(ZANTHE_NO_UNDEFINED "")
    add_compile_options(-fsanitize=${ZANTHE_SANITIZE} -fno-sanitize-recover=all
                        -fno-omit-frame-pointer)
    add_link_options(-fsanitize=${ZANTHE_SANITIZE})
    # GCC's flow warnings misfire on instrumented code.
    target_compile_options(zanthe_settings INTERFACE
        $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

# The coverage that libFuzzer steers by, in the library's objects too; only the targets link its main.
if(ZANTHE_FUZZERS)
    add_compile_options(-fsanitize=fuzzer-no-link)
    add_link_options(-fsanitize=fuzzer-no-link)
endif()
