kpx_add_test(NAME transport_job SOURCES unit/transport_job_test.cpp
             LIBS kpx_loopback LABEL unit)
kpx_add_test(NAME transport_limits SOURCES unit/transport_limits_test.cpp
             LIBS kpx_transport LABEL unit)
