include(CMakePackageConfigHelpers)

install(TARGETS zanthe EXPORT ZantheTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS zanthe_program RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT ZantheTargets NAMESPACE Zanthe::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zanthe)

configure_package_config_file(cmake/ZantheConfig.cmake.in ZantheConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zanthe)
write_basic_package_version_file(ZantheConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZantheConfig.cmake ${PROJECT_BINARY_DIR}/ZantheConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zanthe)

# Debian's lib folder has a second part, lib/x86_64-linux-gnu: the way up is as long as that is.
set(ZANTHE_PC_FOLDER ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH ZANTHE_PC_TO_PREFIX /${ZANTHE_PC_FOLDER} /)
string(REGEX REPLACE "/$" "" ZANTHE_PC_TO_PREFIX ${ZANTHE_PC_TO_PREFIX})
configure_file(cmake/zanthe.pc.in zanthe.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zanthe.pc DESTINATION ${ZANTHE_PC_FOLDER})
install(FILES LICENSE docs/licences.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
