# The properties window of both programs.
kpx_add_test(NAME properties_admin LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/properties_admin_test.cpp)
kpx_add_test(NAME properties_tool LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/properties_tool_test.cpp)
target_compile_definitions(test_properties_tool PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
add_dependencies(test_properties_tool makequeues)
kpx_add_test(NAME presets_window LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/presets_window_test.cpp)
target_compile_definitions(test_presets_window PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>"
  KPX_ASSISTIVE="${CMAKE_CURRENT_SOURCE_DIR}/support/assistivesteps")
add_dependencies(test_presets_window makequeues)
kpx_add_test(NAME access_keys LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/access_keys_test.cpp)
# The same tasks without a pointer.
kpx_add_test(NAME keyboard_tasks LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/keyboard_tasks_test.cpp support/printerjobs.cpp)
target_compile_definitions(test_keyboard_tasks PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
add_dependencies(test_keyboard_tasks makequeues)
kpx_add_test(NAME focus LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/focus_test.cpp)
kpx_add_test(NAME display_scale LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/display_scale_test.cpp)
set_property(TEST display_scale APPEND PROPERTY ENVIRONMENT KPX_SCREEN=2560x2048)
