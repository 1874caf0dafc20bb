# The installed SDK: the staged folder plus what build systems need to find it. All of it can be moved as a whole.

include(CMakePackageConfigHelpers)

set(_package_dir lib/cmake/OrviCamApi)
set(_package_build "${CMAKE_CURRENT_BINARY_DIR}/package")

configure_file(cmake/OrviCamApi.pc.in "${ORVI_SDK_DIR}/lib/pkgconfig/OrviCamApi.pc" @ONLY)
configure_package_config_file(cmake/OrviCamApiConfig.cmake.in "${_package_build}/OrviCamApiConfig.cmake"
  INSTALL_DESTINATION "${_package_dir}")
write_basic_package_version_file("${_package_build}/OrviCamApiConfigVersion.cmake" COMPATIBILITY SameMajorVersion)

install(TARGETS OrviCamApi_64 EXPORT OrviCamApi LIBRARY DESTINATION lib)
install(EXPORT OrviCamApi NAMESPACE Orvi:: FILE OrviCamApiTargets.cmake DESTINATION "${_package_dir}")
install(FILES
  "${_package_build}/OrviCamApiConfig.cmake"
  "${_package_build}/OrviCamApiConfigVersion.cmake"
  DESTINATION "${_package_dir}")
install(FILES "${ORVI_SDK_DIR}/lib/pkgconfig/OrviCamApi.pc" DESTINATION lib/pkgconfig)
install(FILES include/OrviCamApi.h DESTINATION include)
install(FILES LICENSE DESTINATION share/doc/OrviCamApi)
# Not where udev reads it: that is the machine owner's decision (docs/building.md). orvicam doctor tells how.
configure_file(packaging/70-u3v.rules "${ORVI_SDK_DIR}/share/udev/rules.d/70-u3v.rules" COPYONLY)
install(FILES packaging/70-u3v.rules DESTINATION share/udev/rules.d)
# A sample for ORVI_VIRTUAL_CAMERAS.
configure_file(packaging/virtual-cameras.toml "${ORVI_SDK_DIR}/share/orvi/virtual-cameras.toml" COPYONLY)
install(FILES packaging/virtual-cameras.toml DESTINATION share/orvi)

# Parts that may have been left out of this build.
if(TARGET OrviU3vCamApi_64)
  install(TARGETS OrviU3vCamApi_64 LIBRARY DESTINATION lib)
endif()
foreach(_program orvicam orvi-vcam-usbip)
  if(TARGET ${_program})
    install(TARGETS ${_program} RUNTIME DESTINATION bin)
  endif()
endforeach()
if(TARGET orvicam)
  configure_file(tools/orvicam/completion.bash "${ORVI_SDK_DIR}/share/bash-completion/completions/orvicam" COPYONLY)
  install(FILES "${ORVI_SDK_DIR}/share/bash-completion/completions/orvicam"
    DESTINATION share/bash-completion/completions)
endif()
