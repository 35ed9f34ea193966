foreach(kind delivery failures stop)
  kpx_add_test(NAME transport_${kind}
               SOURCES e2e/transport_${kind}_test.cpp support/loopback.cpp support/transportrun.cpp
               LIBS kpx_transport SANDBOX bare LABEL e2e TIMEOUT 240)
endforeach()
