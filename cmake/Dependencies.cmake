# The libraries behind the four wrappers: XML, ZIP, codec with cipher, JPEG. All are Debian packages
# (scripts/install-packages); pkg-config finds them, and the installed package finds them alike.
find_package(PkgConfig REQUIRED)
pkg_check_modules(NUO_PUGIXML REQUIRED IMPORTED_TARGET pugixml)
pkg_check_modules(NUO_LIBZIP REQUIRED IMPORTED_TARGET libzip)
pkg_check_modules(NUO_LIBDEFLATE REQUIRED IMPORTED_TARGET libdeflate)
pkg_check_modules(NUO_LIBCRYPTO REQUIRED IMPORTED_TARGET libcrypto)
pkg_check_modules(NUO_LIBJPEG REQUIRED IMPORTED_TARGET libjpeg)
set(NUO_FOUNDATION_LIBRARIES PkgConfig::NUO_PUGIXML)
set(NUO_CONTAINER_LIBRARIES
    PkgConfig::NUO_LIBZIP PkgConfig::NUO_LIBDEFLATE PkgConfig::NUO_LIBCRYPTO)
set(NUO_IMAGE_LIBRARIES PkgConfig::NUO_LIBJPEG)
