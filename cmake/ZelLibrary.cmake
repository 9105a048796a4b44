# zel_library(NAME DIR... DEPS ...): one static library from every .cpp file of
# the given folders (relative to the current source dir).
function(zel_library name)
  cmake_parse_arguments(ARG "" "" "DIRS;DEPS;PUBLIC_DEPS" ${ARGN})
  set(sources "")
  foreach(dir IN LISTS ARG_DIRS)
    file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
    list(APPEND sources ${found})
  endforeach()
  if(NOT sources)
    # Headers only, so far.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR})
    target_link_libraries(${name} INTERFACE ${ARG_PUBLIC_DEPS})
    return()
  endif()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR})
  target_compile_definitions(${name} PUBLIC ZEL_ABI_TAG=${ZEL_ABI_TAG}
    ZEL_RESOURCES_DIR="${ZEL_RESOURCES_DIR}")
  target_link_libraries(${name} PUBLIC ${ARG_PUBLIC_DEPS} PRIVATE ${ARG_DEPS})
endfunction()

# zel_test(NAME DIR LIBS...): one GoogleTest executable from tests/DIR/*.cpp.
function(zel_test name dir)
  file(GLOB found CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/*.cpp)
  if(NOT found)
    return()
  endif()
  add_executable(${name} ${found})
  target_link_libraries(${name} PRIVATE ${ARGN} GTest::gtest GTest::gtest_main GTest::gmock)
  target_compile_definitions(${name} PRIVATE ZEL_TEST_DATA_DIR="${CMAKE_CURRENT_SOURCE_DIR}/data")
  gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60)
endfunction()
