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
  target_compile_options(${target} PRIVATE -O1 -g1)  # tests are built more often than they run long
  if(TARGET qs_test_prefix)
    target_precompile_headers(${target} REUSE_FROM qs_test_prefix)
    # Where the library's headers are precompiled, GCC 12 sees its strings beyond their bounds. The dev build keeps the
    # warnings.
    target_compile_options(${target} PRIVATE -Wno-array-bounds -Wno-stringop-overflow)
  endif()
  add_test(NAME ${path} COMMAND ${target})
  set_tests_properties(${path} PROPERTIES LABELS "${folder}" TIMEOUT ${ARG_TIMEOUT})
endfunction()

# qs_add_core_test(folder/Class) links the core's own objects, hidden symbols included.
function(qs_add_core_test path)
  qs_add_test(${path} LIBS qs_core_objects ${ARGN})
endfunction()

# qs_add_fuzzer(folder/Name [LIBS lib...]) builds fuzz/<folder>/<Name>_fuzz.cpp: on libFuzzer in the fuzz preset,
# otherwise with a main of its own that replays its corpus and made-up inputs as ordinary tests, so that it cannot rot.
function(qs_add_fuzzer path)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  string(REPLACE "/" "_" target ${path}_fuzz)
  add_executable(${target} ${PROJECT_SOURCE_DIR}/fuzz/${path}_fuzz.cpp)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/fuzz)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${target} PRIVATE qs_flags ${ARG_LIBS})
  add_dependencies(fuzzers ${target})
  if(QS_LIBFUZZER)
    target_compile_options(${target} PRIVATE -fsanitize=fuzzer)
    target_link_options(${target} PRIVATE -fsanitize=fuzzer)
    return()
  endif()
  target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/fuzz/replay_main.cpp)
  get_filename_component(folder ${path} DIRECTORY)
  get_filename_component(name ${path} NAME)
  file(GLOB corpus CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/fuzz/${folder}/corpus/${name}/*)
  add_test(NAME fuzz/${path} COMMAND ${target})
  set_tests_properties(fuzz/${path} PROPERTIES LABELS fuzz TIMEOUT 300)
  if(corpus)
    add_test(NAME fuzz/${path}/corpus COMMAND ${target} ${corpus})
    set_tests_properties(fuzz/${path}/corpus PROPERTIES LABELS fuzz)
  endif()
endfunction()

# qs_add_bench(folder/Name [LIBS lib...]) builds bench/<folder>/<Name>_bench.cpp. A benchmark checks its answer before it
# measures, and runs once, briefly, with the tests.
function(qs_add_bench path)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  string(REPLACE "/" "_" target ${path}_bench)
  add_executable(${target} ${PROJECT_SOURCE_DIR}/bench/${path}_bench.cpp)
  set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
  target_include_directories(${target} PRIVATE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(${target} PRIVATE qs_flags ${ARG_LIBS} benchmark::benchmark_main)
  add_test(NAME bench/${path} COMMAND ${target} --benchmark_min_time=0.001)
  set_tests_properties(bench/${path} PROPERTIES LABELS bench TIMEOUT 300)
endfunction()
