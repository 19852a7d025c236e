# qs_add_logged_test(folder/Class) is a core test that sees the library's log through tests/fakes/log_capture.h. More
# sources may follow.
function(qs_add_logged_test path)
  qs_add_core_test(${path} SOURCES ${PROJECT_SOURCE_DIR}/tests/fakes/log_capture.cpp ${ARGN})
  string(REPLACE "/" "_" target ${path}_test)
  target_link_options(${target} PRIVATE -Wl,--wrap=_ZN10COutputLog8WriteLogEiPKcz)
endfunction()
