find_package(GTest REQUIRED)
include(GoogleTest)

# zanthe_test(NAME [MEDIA] SOURCES... [LIBRARIES ...])
# One test program; each of its cases is a test of its own. MEDIA: the cases read what
# tests/media/make-media writes, so that runs first.
function(zanthe_test name)
    cmake_parse_arguments(arg "MEDIA" "" "SOURCES;LIBRARIES" ${ARGN})
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE
        zanthe_settings zanthe_testing zanthe_test_support GTest::gmock GTest::gtest_main
        ${arg_LIBRARIES})
    set(properties TIMEOUT 300)
    if(arg_MEDIA)
        list(APPEND properties FIXTURES_REQUIRED made_media)
    endif()
    gtest_discover_tests(${name} TEST_PREFIX ${name}. PROPERTIES ${properties}
                         DISCOVERY_TIMEOUT 60)
endfunction()
