# The job window with a real spooler.
kpx_add_test(NAME jobs LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full TIMEOUT 600
  SOURCES e2e/jobs_test.cpp)
target_compile_definitions(test_jobs PRIVATE KPX_MAKEQUEUES="$<TARGET_FILE:makequeues>")
add_dependencies(test_jobs makequeues)
