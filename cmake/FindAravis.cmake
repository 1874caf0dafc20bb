# libaravis has no CMake package of its own: the target Aravis::aravis from its pkg-config file.
find_package(PkgConfig QUIET)
if(PKG_CONFIG_FOUND)
  pkg_check_modules(ARAVIS QUIET IMPORTED_TARGET aravis-0.8)
endif()
if(TARGET PkgConfig::ARAVIS AND NOT TARGET Aravis::aravis)
  # Seen from here only: the imported target of pkg-config belongs to the folder that asked.
  add_library(Aravis::aravis INTERFACE IMPORTED GLOBAL)
  set_target_properties(Aravis::aravis PROPERTIES
    INTERFACE_INCLUDE_DIRECTORIES "${ARAVIS_INCLUDE_DIRS}" INTERFACE_LINK_LIBRARIES "${ARAVIS_LINK_LIBRARIES}")
endif()
set(Aravis_FOUND ${ARAVIS_FOUND})
