# How every target of the project is built, and which parts can be built here.

add_library(orvi_build INTERFACE)
target_compile_options(orvi_build INTERFACE
  -Wall -Wextra -Wconversion -Wshadow $<$<BOOL:${ORVI_WERROR}>:-Werror>)
if(ORVI_SANITIZE)
  target_compile_options(orvi_build INTERFACE -fsanitize=${ORVI_SANITIZE} -fno-omit-frame-pointer
    -fno-sanitize-recover=all)
  target_link_options(orvi_build INTERFACE -fsanitize=${ORVI_SANITIZE})
endif()

# The SDK folder as it will be installed, usable from the build folder as it stands.
set(ORVI_SDK_DIR "${CMAKE_BINARY_DIR}/sdk")

# orvi_find(package "debian packages" target): looks for a package and names it once when it is missing.
function(orvi_find package debian target)
  find_package(${package} QUIET)
  if(TARGET ${target})
    set(ORVI_HAVE_${package} TRUE PARENT_SCOPE)
  else()
    set(ORVI_HAVE_${package} FALSE PARENT_SCOPE)
  endif()
  set(ORVI_DEBIAN_${package} "${debian}" PARENT_SCOPE)
endfunction()

# orvi_part(folder "what it is" packages...): adds the folder when its packages are there, else says what is missing.
macro(orvi_part folder what)
  set(_missing)
  foreach(_package ${ARGN})
    if(NOT ORVI_HAVE_${_package})
      list(APPEND _missing "${ORVI_DEBIAN_${_package}}")
    endif()
  endforeach()
  if(NOT EXISTS "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/CMakeLists.txt")
    message(STATUS "Without ${what}: ${folder}/ is not here")
  elseif(_missing)
    list(JOIN _missing ", " _missing)
    message(STATUS "Without ${what}: install ${_missing}")
  else()
    add_subdirectory(${folder})
  endif()
endmacro()
