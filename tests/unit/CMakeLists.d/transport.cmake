kpx_add_test(NAME transport_job SOURCES unit/transport_job_test.cpp
             LIBS kpx_loopback LABEL unit)
kpx_add_test(NAME transport_retrytimes SOURCES unit/transport_retrytimes_test.cpp
             LIBS kpx_transport LABEL unit)
