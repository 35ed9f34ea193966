# The programs driven through their windows, from a key press to the bytes at the printer.
add_executable(makequeues support/makequeues.cpp support/adminsession.cpp)
target_link_libraries(makequeues PRIVATE kpx_core)

kpx_add_test(NAME startup LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/startup_test.cpp)
kpx_add_test(NAME print_tool LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/print_tool_test.cpp)
kpx_add_test(NAME print_settings LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/print_settings_test.cpp)
foreach(test IN ITEMS test_print_tool test_print_settings)
  target_compile_definitions(${test} PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
  add_dependencies(${test} makequeues)
endforeach()

# What ./demo runs, and all that it needs.
add_executable(demo_driver support/demo_driver.cpp)
target_link_libraries(demo_driver PRIVATE kpx_core kpx_guidriver PkgConfig::XTST)
set(programs)
foreach(directory src filter ctl transport spooler)
  get_property(targets DIRECTORY ${PROJECT_SOURCE_DIR}/${directory} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target ${targets})
    get_target_property(type ${target} TYPE)
    if(type STREQUAL EXECUTABLE)
      list(APPEND programs ${target})
    endif()
  endforeach()
endforeach()
add_custom_target(demo_parts DEPENDS ${programs} kpx_data kpx_pictures
                  printerd demo_driver gtkprint)

# The pictures of docs/screenshots.
add_executable(screenshots support/screenshots.cpp)
target_compile_definitions(screenshots PRIVATE KPX_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}")
target_link_libraries(screenshots PRIVATE kpx_core kpx_guidriver PkgConfig::XTST)
