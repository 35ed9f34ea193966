# Queues in a real spooler, through the bridge.
kpx_add_test(NAME queue_creation LIBS kpx_core LABEL e2e SANDBOX full
  SOURCES e2e/queue_creation_test.cpp)
# Models of other makers, added to the installation.
kpx_add_test(NAME added_models LIBS kpx_filter kpx_transport LABEL e2e SANDBOX full TIMEOUT 300
  SOURCES e2e/added_models_test.cpp support/adminsession.cpp support/printerjobs.cpp)
target_compile_definitions(test_added_models PRIVATE KPX_PRINTERD="$<TARGET_FILE:printerd>")
kpx_add_test(NAME added_models_windows LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
  SOURCES e2e/added_models_windows_test.cpp)
kpx_add_test(NAME makers_windows LIBS kpx_core kpx_guidriver Cups::Cups LABEL e2e SANDBOX full
  SOURCES e2e/makers_windows_test.cpp support/everyoption.cpp support/makersfeatures.cpp)
foreach(part transports drivers corpus)
  kpx_add_test(NAME added_models_${part} LIBS kpx_filter kpx_transport Cups::Cups LABEL e2e SANDBOX full
    TIMEOUT 600 SOURCES e2e/added_models_${part}_test.cpp support/adminsession.cpp
    support/printerjobs.cpp)
  target_compile_definitions(test_added_models_${part} PRIVATE KPX_PRINTERD="$<TARGET_FILE:printerd>")
endforeach()
if(KPX_LONG)
  kpx_add_test(NAME makers_names LIBS kpx_core LABEL e2e SOURCES e2e/makers_names_test.cpp)
endif()
