# The administration program driven through its windows.
foreach(part window addqueue)
  kpx_add_test(NAME admin_${part} LIBS kpx_core kpx_guidriver LABEL e2e SANDBOX full
    SOURCES e2e/admin_${part}_test.cpp)
endforeach()
