# One interface target carries warnings and sanitizers to everything that we compile.
add_library(qs_flags INTERFACE)
target_compile_options(qs_flags INTERFACE -Wall -Wextra -Wconversion)
if(QS_WERROR)
  target_compile_options(qs_flags INTERFACE -Werror)
endif()
if(QS_SANITIZE)
  target_compile_options(qs_flags INTERFACE -fsanitize=${QS_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(qs_flags INTERFACE -fsanitize=${QS_SANITIZE})
endif()
if(QS_LIBFUZZER)
  # The fuzzer is led by what the code under it does.
  target_compile_options(qs_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

# The core and the modules: every symbol hidden unless it is exported by name, and floating point
# rounded once for each written operation, also where the processor could fuse two of them.
add_library(qs_core_flags INTERFACE)
target_link_libraries(qs_core_flags INTERFACE qs_flags)
target_compile_options(qs_core_flags INTERFACE -fvisibility=hidden -fvisibility-inlines-hidden -ffp-contract=off)
target_include_directories(qs_core_flags INTERFACE ${PROJECT_SOURCE_DIR}/include)
