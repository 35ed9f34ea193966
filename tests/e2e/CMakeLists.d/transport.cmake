foreach(kind delivery failures stop)
  kpx_add_test(NAME transport_${kind}
               SOURCES e2e/transport_${kind}_test.cpp
               LIBS kpx_loopback SANDBOX bare LABEL e2e)
endforeach()
