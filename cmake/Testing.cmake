find_package(GTest REQUIRED)
include(GoogleTest)
# Decoders that pictures are compared with.
pkg_check_modules(PICTURE_FORMATS REQUIRED IMPORTED_TARGET libjpeg libtiff-4 libwebp)
# Makes files that unfold.
find_package(ZLIB REQUIRED)

# All test programs that the thread sanitizer is to look at.
add_custom_target(zanthe_thread_tests)

# zanthe_test(NAME [MEDIA] [THREADS] SOURCES... [LIBRARIES ...])
# One test program; each of its cases is a test of its own. MEDIA: the cases read what
# tests/media/make-media writes, so that runs first. THREADS: the cases run code on several threads,
# so they are passed under the thread sanitizer too (label threads).
function(zanthe_test name)
    cmake_parse_arguments(arg "MEDIA;THREADS" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE
        zanthe_settings zanthe_testing zanthe_test_support GTest::gmock GTest::gtest_main
        ${arg_LIBRARIES})
    # What libraries do among themselves is no finding of ours; the files say which and why. One
    # variable for each build: a second would end the list of properties.
    set(quieted ${PROJECT_SOURCE_DIR}/tests/support)
    set(properties TIMEOUT 300)
    if(ZANTHE_SANITIZE MATCHES thread)
        list(APPEND properties ENVIRONMENT TSAN_OPTIONS=suppressions=${quieted}/races.supp)
    elseif(ZANTHE_SANITIZE)
        list(APPEND properties ENVIRONMENT
            LSAN_OPTIONS=suppressions=${quieted}/leaks.supp:print_suppressions=0)
    endif()
    if(arg_MEDIA)
        list(APPEND properties FIXTURES_REQUIRED made_media)
    endif()
    if(arg_THREADS)
        list(APPEND properties LABELS threads)
        add_dependencies(zanthe_thread_tests ${name})
    endif()
    gtest_discover_tests(${name} TEST_PREFIX ${name}. PROPERTIES ${properties}
                         DISCOVERY_TIMEOUT 60)
endfunction()
