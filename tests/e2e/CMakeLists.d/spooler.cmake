# The spooler bridge, and the sandbox itself.
kpx_add_test(NAME spooler_printing LABEL e2e SANDBOX full
  SOURCES e2e/spooler_printing_test.cpp)
kpx_add_test(NAME spooler_failures LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/spooler_failures_test.cpp)
kpx_add_test(NAME spooler_thousands LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/spooler_thousands_test.cpp)
kpx_add_test(NAME spooler_filter LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/spooler_filter_test.cpp)
kpx_add_test(NAME spooler_scripts LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/spooler_scripts_test.cpp)
kpx_add_test(NAME spooler_doubt LIBS kpx_core kpx_loopback LABEL e2e SANDBOX full
  SOURCES e2e/spooler_doubt_test.cpp)
kpx_add_test(NAME spooler_commands LABEL e2e SANDBOX full
  SOURCES e2e/spooler_commands_test.cpp)
kpx_add_test(NAME spooler_coherence LIBS kpx_transport LABEL e2e SANDBOX full
  SOURCES e2e/spooler_coherence_test.cpp support/faultinjection.cpp)
# Starts its sandboxes itself.
kpx_add_test(NAME sandbox LABEL e2e SOURCES e2e/sandbox_test.cpp)
target_compile_definitions(test_sandbox PRIVATE KPX_SANDBOX_PROGRAM="${KPX_SANDBOX}"
                           KPX_STAGE_DIR="${KPX_STAGE}")
set_tests_properties(sandbox PROPERTIES FIXTURES_REQUIRED stage)
kpx_add_test(NAME printer_standin LABEL e2e SANDBOX bare SOURCES e2e/printerd_test.cpp)
target_compile_definitions(test_printer_standin PRIVATE KPX_PRINTERD="$<TARGET_FILE:printerd>")
kpx_add_test(NAME application_printing LIBS kpx_filter LABEL e2e SANDBOX full
  SOURCES e2e/application_printing_test.cpp support/adminsession.cpp)
add_executable(gtkprint support/gtkprint.cpp)
target_link_libraries(gtkprint PRIVATE PkgConfig::GTK3)
# It stands for a program of others, and so do the leaks of the print dialog's modules.
target_compile_options(gtkprint PRIVATE -fno-sanitize=all)
target_link_options(gtkprint PRIVATE -fno-sanitize=all)
target_compile_definitions(test_application_printing PRIVATE KPX_GTKPRINT="$<TARGET_FILE:gtkprint>"
                           KPX_PRINTDIALOG="${CMAKE_CURRENT_SOURCE_DIR}/support/printdialog")
add_dependencies(test_application_printing gtkprint)
if(KPX_LONG)
  kpx_add_test(NAME application_office LIBS kpx_core LABEL e2e SANDBOX full
    SOURCES e2e/application_office_test.cpp)
  kpx_add_test(NAME application_browser LIBS kpx_core LABEL e2e SANDBOX full
    SOURCES e2e/application_browser_test.cpp)
endif()
kpx_add_test(NAME application_table LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/application_table_test.cpp)
target_compile_definitions(test_application_table PRIVATE KPX_GTKPRINT="$<TARGET_FILE:gtkprint>"
                           KPX_TABLE="${PROJECT_SOURCE_DIR}/docs/applications.md")
add_dependencies(test_application_table gtkprint)
kpx_add_test(NAME application_privacy LIBS kpx_filter LABEL e2e SANDBOX full
  SOURCES e2e/application_privacy_test.cpp)
kpx_add_test(NAME application_sharing LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/application_sharing_test.cpp)
set(second_host KPX_SECOND_HOST="${CMAKE_CURRENT_SOURCE_DIR}/support/secondhost")
target_compile_definitions(test_application_sharing PRIVATE ${second_host})
if(KPX_LONG)
  kpx_add_test(NAME application_found LIBS kpx_core LABEL e2e SANDBOX full
    SOURCES e2e/application_found_test.cpp)
  target_compile_definitions(test_application_found PRIVATE ${second_host}
                             KPX_DNSSD="${CMAKE_CURRENT_SOURCE_DIR}/support/dnssd")
endif()
