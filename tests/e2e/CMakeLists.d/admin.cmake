# The administration program driven through its windows.
foreach(part window rows address discovery addqueue failures recovery)
  kpx_add_test(NAME admin_${part} LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
    SOURCES e2e/admin_${part}_test.cpp)
endforeach()
if(KPX_LONG)
  kpx_add_test(NAME admin_announced LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
    SOURCES e2e/admin_announced_test.cpp)
  target_compile_definitions(test_admin_announced PRIVATE
    KPX_SECOND_HOST="${CMAKE_CURRENT_SOURCE_DIR}/support/secondhost"
    KPX_DNSSD="${CMAKE_CURRENT_SOURCE_DIR}/support/dnssd")
endif()
kpx_add_test(NAME admin_save LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/admin_save_test.cpp)
kpx_add_test(NAME admin_scale LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/admin_scale_test.cpp)
# Minutes, most of them the scheduler's.
if(KPX_LONG)
  kpx_add_test(NAME admin_thousands LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
    SOURCES e2e/admin_thousands_test.cpp)
endif()
kpx_add_test(NAME administrator_lock LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/administrator_lock_test.cpp)
kpx_add_test(NAME save_progress LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/save_progress_test.cpp)
kpx_add_test(NAME optionfile_readers LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/optionfile_readers_test.cpp)
kpx_add_test(NAME large_texts LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/large_texts_test.cpp)

# A module that the administration must not load.
add_library(markingmodule MODULE support/markingmodule.cpp)
kpx_add_test(NAME module_guard LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/module_guard_test.cpp)
foreach(target markingmodule test_module_guard)
  target_compile_definitions(${target} PRIVATE KPX_MODULE_MARK="/tmp/kpx-module-mark"
    KPX_MARKING_MODULE="$<TARGET_FILE:markingmodule>")
endforeach()
add_dependencies(test_module_guard markingmodule)
