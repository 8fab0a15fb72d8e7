# Installs the engine into a scratch folder, then builds and runs the example against it.
#   cmake -DBUILD_DIR=... -DSCRATCH=... -DSOURCE=... -DCOMPILER=... -P run.cmake
file(REMOVE_RECURSE ${SCRATCH})
foreach(step IN ITEMS
    "${CMAKE_COMMAND};--install;${BUILD_DIR};--component;ephemeris;--prefix;${SCRATCH}/prefix"
    "${CMAKE_COMMAND};-G;Ninja;-S;${SOURCE};-B;${SCRATCH}/build;-DCMAKE_PREFIX_PATH=${SCRATCH}/prefix;-DCMAKE_CXX_COMPILER=${COMPILER}"
    "${CMAKE_COMMAND};--build;${SCRATCH}/build"
    "${SCRATCH}/build/package_example")
  execute_process(COMMAND ${step} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${step}\n${output}")
  endif()
endforeach()
