# The job window with a real spooler.
set(jobs_tests jobs jobs_many jobs_testpage jobs_questions jobs_assistive)
if(KPX_LONG) # needs the packages of packages-long.txt
  list(APPEND jobs_tests jobs_snmp)
endif()
foreach(test IN LISTS jobs_tests)
  kpx_add_test(NAME ${test} LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full TIMEOUT 600
    SOURCES e2e/${test}_test.cpp)
  target_compile_definitions(test_${test} PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
  add_dependencies(test_${test} makequeues)
endforeach()
target_link_libraries(test_jobs_many PRIVATE Cups::Cups)
target_link_libraries(test_jobs_questions PRIVATE kpx_loopback)
target_compile_definitions(test_jobs_assistive PRIVATE
  KPX_ASSISTIVE="${CMAKE_CURRENT_SOURCE_DIR}/support/assistivesteps")
