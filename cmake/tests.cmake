# qs_add_test(folder/Name [LIBS lib...]) builds tests/<folder>/<Name>_test.cpp and registers its cases with ctest.
# LABELS of a test are its folder, so that `ctest -L command` runs one folder.
function(qs_add_test path)
  cmake_parse_arguments(ARG "" "TIMEOUT" "LIBS;SOURCES" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  get_filename_component(folder ${path} DIRECTORY)
  string(REPLACE "/" "_" target ${path}_test)
  add_executable(${target} ${PROJECT_SOURCE_DIR}/tests/${path}_test.cpp ${ARG_SOURCES})
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${target} PRIVATE qs_flags ${ARG_LIBS} GTest::gtest_main Threads::Threads)
  add_test(NAME ${path} COMMAND ${target})
  set_tests_properties(${path} PROPERTIES LABELS "${folder}" TIMEOUT ${ARG_TIMEOUT})
endfunction()

# qs_add_core_test(folder/Class) links the core's own objects, hidden symbols included.
function(qs_add_core_test path)
  qs_add_test(${path} LIBS qs_core_objects ${ARGN})
endfunction()
