# Installs the build, moves the installed folder elsewhere, and builds and runs applications against it: one through
# find_package, one through pkg-config. Run as cmake -DBUILD=... -DWORK=... -DSOURCE=... -P; PKG_CONFIG and
# TRANSPORT say whether there is a pkg-config and whether the transport was built.

function(run)
  cmake_parse_arguments(PARSE_ARGV 0 run "" "OUTPUT" "COMMAND")
  execute_process(COMMAND ${run_COMMAND} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN run_COMMAND " " command)
    message(FATAL_ERROR "${command}: ${result}\n${output}")
  endif()
  if(run_OUTPUT)
    string(STRIP "${output}" output)
    set(${run_OUTPUT} "${output}" PARENT_SCOPE)
  endif()
endfunction()

function(expect_file path)
  if(NOT EXISTS "${path}")
    message(FATAL_ERROR "not installed: ${path}")
  endif()
endfunction()

function(expect_two_cameras application)
  if(TRANSPORT)
    run(COMMAND "${CMAKE_COMMAND}" -E env ORVI_VIRTUAL_CAMERAS=2 "ORVICAMSDK=${sdk}" "${application}" OUTPUT said)
    if(NOT said STREQUAL "cameras: 2")
      message(FATAL_ERROR "${application} said '${said}'")
    endif()
  endif()
endfunction()

file(REMOVE_RECURSE "${WORK}")
run(COMMAND "${CMAKE_COMMAND}" --install "${BUILD}" --prefix "${WORK}/first")
set(sdk "${WORK}/moved sdk")
file(RENAME "${WORK}/first" "${sdk}")

expect_file("${sdk}/lib/libOrviCamApi_64.so")
expect_file("${sdk}/lib/libOrviCamApi_64.so.1")
expect_file("${sdk}/include/OrviCamApi.h")
if(TRANSPORT)
  expect_file("${sdk}/lib/libOrviU3vCamApi_64.so")
endif()

run(COMMAND "${CMAKE_COMMAND}" -S "${SOURCE}/consumer" -B "${WORK}/consumer" "-DCMAKE_PREFIX_PATH=${sdk}")
run(COMMAND "${CMAKE_COMMAND}" --build "${WORK}/consumer")
expect_two_cameras("${WORK}/consumer/consumer_c")
expect_two_cameras("${WORK}/consumer/consumer_cpp")

if(PKG_CONFIG)
  set(ENV{PKG_CONFIG_PATH} "${sdk}/lib/pkgconfig")
  run(COMMAND "${PKG_CONFIG}" --cflags --libs OrviCamApi OUTPUT flags)
  separate_arguments(flags UNIX_COMMAND "${flags}")
  run(COMMAND "${CC}" -std=c11 -Wall -Werror "${WORK}/consumer/consumer.c" -o "${WORK}/consumer_pc" ${flags}
              "-Wl,-rpath,${sdk}/lib")
  expect_two_cameras("${WORK}/consumer_pc")
endif()

if(TRANSPORT AND EXISTS "${sdk}/bin/orvicam")
  run(COMMAND "${CMAKE_COMMAND}" -E env --unset=ORVICAMSDK "${sdk}/bin/orvicam" --virtual 1 list OUTPUT said)
  if(NOT said MATCHES "VC000001")
    message(FATAL_ERROR "the installed orvicam said '${said}'")
  endif()
endif()
