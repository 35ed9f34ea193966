# What drives the programs through their windows: the module that is loaded into them, and the
# library that the tests use.
pkg_check_modules(XTST REQUIRED IMPORTED_TARGET x11 xtst)

add_library(kpxinspect MODULE support/inspect.cpp support/inspectchecks.cpp)
target_link_libraries(kpxinspect PRIVATE PkgConfig::GTK3)

add_library(kpx_guidriver STATIC support/guiapp.cpp support/tooldriver.cpp
            support/admindriver.cpp support/xinput.cpp support/printerjobs.cpp
            support/windowmanager.cpp)
target_include_directories(kpx_guidriver PUBLIC ${CMAKE_CURRENT_SOURCE_DIR}/support
                           ${PROJECT_SOURCE_DIR}/transport)
pkg_get_variable(libraries gtk+-3.0 libdir)
target_compile_definitions(kpx_guidriver PRIVATE
  KPX_LIBRARIES="${libraries}"
  KPX_INSPECT_MODULE="$<TARGET_FILE:kpxinspect>"
  KPX_LEAK_SUPPRESSIONS="${CMAKE_CURRENT_SOURCE_DIR}/support/lsan.supp")
target_link_libraries(kpx_guidriver PRIVATE PkgConfig::XTST)
add_dependencies(kpx_guidriver kpxinspect)

# What the tests of single windows share: kpx_gui runs inside the test program.
add_library(kpx_guisupport STATIC support/guisupport.cpp)
target_link_libraries(kpx_guisupport PUBLIC kpx_gui kpx_guidriver)
