# What `cmake --install` lays down:
#
#   <bindir>/                 qsscan, qs-virtual-scanner        (in their own folders' build files)
#   <libdir>/qsscan/          the core and, beside it, its run-time modules: it looks for them in its own real folder
#   <libdir>/                 libQsScanCoreApi.so and .so.1, links into that folder
#   <libdir>/cmake/QsScan/    find_package(QsScan): QsScan::CoreApi to link the core, QsScan::Headers to load it
#   <libdir>/pkgconfig/       qsscan.pc
#   <mandir>/man1/            qsscan.1, qs-virtual-scanner.1
#   <datadir>/bash-completion/completions/qsscan
#   <datadir>/qsscan/         the rules that let people use a USB scanner, to be filled in by the administrator
#   <datadir>/doc/qsscan/     licence and manuals
#   <includedir>/qsscan/      what a host includes; modules/ what the author of a module includes
#
# Nothing in it names the prefix, so that an installed copy may be moved as a whole.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(QS_PRIVATE_LIBDIR ${CMAKE_INSTALL_LIBDIR}/qsscan)
set(QS_PRIVATE_INCLUDEDIR ${CMAKE_INSTALL_INCLUDEDIR}/qsscan)
set(QS_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/QsScan)
set(QS_INSTALL_STAGE ${CMAKE_BINARY_DIR}/install)

# The headers alone: for hosts that load the core with dlopen, and for modules, which must never be linked against it.
add_library(QsScanHeaders INTERFACE)
target_include_directories(QsScanHeaders INTERFACE $<INSTALL_INTERFACE:${QS_PRIVATE_INCLUDEDIR}>)
target_compile_features(QsScanHeaders INTERFACE $<INSTALL_INTERFACE:cxx_std_17>)
target_link_libraries(QsScanCoreApi INTERFACE QsScanHeaders)
set_target_properties(QsScanHeaders PROPERTIES EXPORT_NAME Headers)
set_target_properties(QsScanCoreApi PROPERTIES EXPORT_NAME CoreApi)

install(TARGETS QsScanCoreApi QsScanHeaders EXPORT QsScanTargets LIBRARY DESTINATION ${QS_PRIVATE_LIBDIR})
install(TARGETS QsDeviceAccs QsScanDecode QsJpegDecode QsImageEnhance LIBRARY DESTINATION ${QS_PRIVATE_LIBDIR})
foreach(link libQsScanCoreApi.so.1 libQsScanCoreApi.so)
  file(MAKE_DIRECTORY ${QS_INSTALL_STAGE})
  file(CREATE_LINK qsscan/${link} ${QS_INSTALL_STAGE}/${link} SYMBOLIC)
  install(FILES ${QS_INSTALL_STAGE}/${link} DESTINATION ${CMAKE_INSTALL_LIBDIR})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${QS_PRIVATE_INCLUDEDIR} FILES_MATCHING PATTERN "*.h")
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${PROJECT_SOURCE_DIR}/docs/qsscan.md
  ${PROJECT_SOURCE_DIR}/docs/virtual-scanner.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/qsscan)
install(FILES ${CMAKE_BINARY_DIR}/share/man/man1/qsscan.1 ${CMAKE_BINARY_DIR}/share/man/man1/qs-virtual-scanner.1
  DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
install(FILES ${CMAKE_BINARY_DIR}/share/bash-completion/completions/qsscan
  DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/70-qsscan-usb.rules.template
  DESTINATION ${CMAKE_INSTALL_DATADIR}/qsscan)

install(EXPORT QsScanTargets NAMESPACE QsScan:: DESTINATION ${QS_PACKAGE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/packaging/QsScanConfig.cmake.in
  ${QS_INSTALL_STAGE}/QsScanConfig.cmake
  INSTALL_DESTINATION ${QS_PACKAGE_DIR}
  PATH_VARS QS_PRIVATE_LIBDIR)
write_basic_package_version_file(${QS_INSTALL_STAGE}/QsScanConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${QS_INSTALL_STAGE}/QsScanConfig.cmake ${QS_INSTALL_STAGE}/QsScanConfigVersion.cmake
  DESTINATION ${QS_PACKAGE_DIR})

# The prefix as seen from the file itself; folders that were given as absolute paths stay so.
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig
  OUTPUT_VARIABLE QS_PREFIX_FROM_PKGCONFIG)
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_LIBDIR BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE QS_PC_LIBDIR)
cmake_path(ABSOLUTE_PATH CMAKE_INSTALL_INCLUDEDIR BASE_DIRECTORY "\${prefix}" OUTPUT_VARIABLE QS_PC_INCLUDEDIR)
configure_file(${PROJECT_SOURCE_DIR}/packaging/qsscan.pc.in ${QS_INSTALL_STAGE}/qsscan.pc @ONLY)
install(FILES ${QS_INSTALL_STAGE}/qsscan.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
