# libusb-1.0 as LibUSB::LibUSB. 1.0.25 is the first whose transfers may outlive their device's handle.
find_package(PkgConfig QUIET)
if(PkgConfig_FOUND)
  pkg_check_modules(LibUSB QUIET IMPORTED_TARGET libusb-1.0>=1.0.25)
  if(TARGET PkgConfig::LibUSB AND NOT TARGET LibUSB::LibUSB)
    add_library(LibUSB::LibUSB ALIAS PkgConfig::LibUSB)
  endif()
endif()

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibUSB REQUIRED_VARS LibUSB_LINK_LIBRARIES VERSION_VAR LibUSB_VERSION)
