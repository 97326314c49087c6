# Installs the built library into a scratch prefix, then configures, builds and runs an outside
# project against it, once through the CMake package and once through pkg-config.
file(REMOVE_RECURSE ${WORK_DIR})
set(prefix ${WORK_DIR}/prefix)

function(run)
  execute_process(COMMAND ${ARGV} RESULT_VARIABLE rc OUTPUT_VARIABLE out ERROR_VARIABLE err)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "failed: ${ARGV}\n${out}\n${err}")
  endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})
foreach(f include/tessarium/tessarium.h lib/cmake/tessarium/tessariumConfig.cmake lib/pkgconfig/tessarium.pc)
  if(NOT EXISTS ${prefix}/${f})
    message(FATAL_ERROR "not installed: ${f}")
  endif()
endforeach()

run(${CMAKE_COMMAND} -S ${SOURCE_DIR}/tests/consumer -B ${WORK_DIR}/build -DCMAKE_PREFIX_PATH=${prefix})
run(${CMAKE_COMMAND} --build ${WORK_DIR}/build)
run(${WORK_DIR}/build/consumer)

find_program(PKG_CONFIG pkg-config)
find_program(CXX_COMPILER NAMES c++ g++)
if(PKG_CONFIG AND CXX_COMPILER)
  set(ENV{PKG_CONFIG_PATH} ${prefix}/lib/pkgconfig)
  execute_process(COMMAND ${PKG_CONFIG} --cflags --libs tessarium OUTPUT_VARIABLE flags
                  OUTPUT_STRIP_TRAILING_WHITESPACE RESULT_VARIABLE rc)
  if(NOT rc EQUAL 0)
    message(FATAL_ERROR "pkg-config cannot find tessarium")
  endif()
  separate_arguments(flags UNIX_COMMAND "${flags}")
  set(extra "")
  if(NOT SHARED)
    set(extra -llapack -lblas)
  endif()
  run(${CXX_COMPILER} -std=c++17 ${SOURCE_DIR}/tests/consumer/main.cpp ${flags} ${extra}
      -Wl,-rpath,${prefix}/lib -o ${WORK_DIR}/consumer_pc)
  run(${WORK_DIR}/consumer_pc)
endif()
message(STATUS "consumer built and ran against ${prefix}")
