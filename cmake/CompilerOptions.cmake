# Options that every target of ours is built with.

add_library(lumenquest_options INTERFACE)
add_library(lumenquest::options ALIAS lumenquest_options)

target_compile_features(lumenquest_options INTERFACE cxx_std_20)
target_compile_options(lumenquest_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion
  $<$<BOOL:${PROJECT_IS_TOP_LEVEL}>:-Werror>
  # What GCC concludes from optimised code is at times wrong, and every version errs elsewhere (14
  # in the destructors of optional records): said, but no reason not to build on a newer system.
  $<$<CXX_COMPILER_ID:GNU>:-Wno-error=maybe-uninitialized>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-error=array-bounds>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-error=stringop-overflow>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-error=restrict>
  $<$<CXX_COMPILER_ID:GNU>:-Wno-error=dangling-pointer>
  # One rounding per operation: a fused multiply-add would round a·b + c once where the series
  # round twice, and results would depend on the machine.
  -ffp-contract=off)

if(LUMENQUEST_SANITIZE)
  set(sanitizers -fsanitize=address,undefined,float-cast-overflow -fno-sanitize-recover=all
      -fno-omit-frame-pointer)
  target_compile_options(lumenquest_options INTERFACE ${sanitizers}
    # The sanitizers' instrumentation makes GCC see uninitialised values where there are none.
    $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  target_compile_definitions(lumenquest_options INTERFACE LUMENQUEST_SANITIZED)
  target_link_options(lumenquest_options INTERFACE ${sanitizers})
endif()

if(LUMENQUEST_BUILD_FUZZ)
  target_compile_options(lumenquest_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

# lumenquest_add_library(<folder> SOURCES <file>... [DEPENDS <target>...])
#
# One static library a folder, `lumenquest::<folder>`. Its headers lie in <folder>/include/<folder>,
# an include root of its own: a file can only include the folders that its target depends on.
function(lumenquest_add_library name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(lumenquest_${name} STATIC ${ARG_SOURCES})
  add_library(lumenquest::${name} ALIAS lumenquest_${name})
  # Position-independent, so that others can link the library into a shared one.
  set_target_properties(lumenquest_${name} PROPERTIES
    EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
  target_include_directories(lumenquest_${name} PUBLIC
    $<BUILD_INTERFACE:${CMAKE_CURRENT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/lumenquest>)
  target_compile_features(lumenquest_${name} PUBLIC cxx_std_20)
  target_link_libraries(lumenquest_${name}
    PUBLIC ${ARG_DEPENDS}
    PRIVATE $<BUILD_INTERFACE:lumenquest::options> ${ARG_PRIVATE_DEPENDS})
endfunction()
