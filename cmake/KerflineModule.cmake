# Helpers shared by every module, plug-in, test and tool target.

# Compile options every target of the project carries: all warnings, as
# errors when KERFLINE_WERROR is on.
function(kerfline_apply_options target)
  if(MSVC)
    target_compile_options(${target} PRIVATE /W4 $<$<BOOL:${KERFLINE_WERROR}>:/WX>)
  else()
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic)
    if(KERFLINE_WERROR)
      target_compile_options(${target} PRIVATE -Werror -Wno-error=deprecated-declarations)
    endif()
    # GCC 12 at -O2/-O3 reports std::string copies inside libstdc++ as
    # overlapping memcpy (GCC bug 105329): a false alarm we cannot fix in
    # our code.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
      target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
  endif()
  target_compile_features(${target} PUBLIC cxx_std_20)
endfunction()

# kerfline_add_module(<name> SOURCES ... [DEPENDS <module>...] [LIBS <lib>...])
#
# Declares one module of src/ as the static library kerfline_<name>. Its link
# list names the modules it may use; the shared library picks up every module
# that was declared, so a new module needs no edit anywhere else.
function(kerfline_add_module name)
  cmake_parse_arguments(ARG "" "" "SOURCES;DEPENDS;LIBS" ${ARGN})
  set(target kerfline_${name})
  add_library(${target} STATIC ${ARG_SOURCES})
  kerfline_apply_options(${target})
  target_include_directories(${target} PUBLIC
    ${PROJECT_SOURCE_DIR}/include
    ${PROJECT_SOURCE_DIR}/src)
  target_compile_definitions(${target} PUBLIC KERFLINE_STATIC_BUILD=1 PRIVATE KERFLINE_BUILDING=1)
  foreach(dep IN LISTS ARG_DEPENDS)
    target_link_libraries(${target} PUBLIC kerfline_${dep})
  endforeach()
  if(ARG_LIBS)
    target_link_libraries(${target} PUBLIC ${ARG_LIBS})
  endif()
  set_property(GLOBAL APPEND PROPERTY KERFLINE_MODULES ${target})
endfunction()

# kerfline_add_test(<name> SOURCES ... LIBS ...): one GoogleTest executable,
# registered with CTest case by case. Under an emulator (Wine) each start
# costs a second or more, so there the executable is one CTest test.
function(kerfline_add_test name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LIBS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  kerfline_apply_options(${name})
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} kerfline_test_fixtures GTest::gtest_main)
  if(CMAKE_CROSSCOMPILING)
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES ENVIRONMENT "KERFLINE_TEST_BINARY_DIR=${PROJECT_BINARY_DIR}")
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
                         PROPERTIES ENVIRONMENT "KERFLINE_TEST_BINARY_DIR=${PROJECT_BINARY_DIR}")
  endif()
endfunction()
