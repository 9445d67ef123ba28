# Everything comes from Debian 12. Only Boost's headers show in the exported interface.
find_package(PkgConfig REQUIRED)
find_package(Boost 1.74 REQUIRED)
pkg_check_modules(LIBAV REQUIRED IMPORTED_TARGET
    libavformat>=59 libavcodec>=59 libavutil>=57 libswresample>=4 libswscale>=6)
# libyuv comes without a pkg-config file.
find_library(LIBYUV_LIBRARY yuv REQUIRED)
find_path(LIBYUV_INCLUDE libyuv.h REQUIRED)
add_library(libyuv UNKNOWN IMPORTED)
set_target_properties(libyuv PROPERTIES
    IMPORTED_LOCATION ${LIBYUV_LIBRARY} INTERFACE_INCLUDE_DIRECTORIES ${LIBYUV_INCLUDE})
pkg_check_modules(LIBPNG REQUIRED IMPORTED_TARGET libpng)
pkg_check_modules(PICTURES REQUIRED IMPORTED_TARGET vips>=8.13 cairo poppler-glib>=21.12)
find_package(GIF 5.2 REQUIRED)
pkg_check_modules(LIBGSF REQUIRED IMPORTED_TARGET libgsf-1)
# The program's alone.
find_package(CLI11 REQUIRED)
find_package(nlohmann_json REQUIRED)
pkg_check_modules(CAIRO REQUIRED IMPORTED_TARGET cairo>=1.16)
pkg_check_modules(INIH REQUIRED IMPORTED_TARGET inih)
# In no repository of Debian 12: platform/mp4v2/ stands in where it is not installed.
pkg_check_modules(MP4V2 IMPORTED_TARGET mp4v2)
