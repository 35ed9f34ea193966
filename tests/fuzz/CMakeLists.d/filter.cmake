# The filter: printer descriptions of any content, and jobs and option texts of any bytes.
get_target_property(filter_sources kpx_filter SOURCES)
list(TRANSFORM filter_sources PREPEND ${PROJECT_SOURCE_DIR}/filter/)
set(filter_options -I${PROJECT_SOURCE_DIR}/filter -I${CMAKE_CURRENT_SOURCE_DIR}/support
    -DKPX_TEST_DATA="${CMAKE_CURRENT_SOURCE_DIR}" ${TextSetting_CFLAGS})
kpx_fuzz_objects(filter_objects DIRECTORY filter SOURCES ${filter_sources}
                 OPTIONS ${filter_options})
set(filter_archive ${KPX_FUZZ_DIR}/libfilter.a)
add_custom_command(OUTPUT ${filter_archive}
  COMMAND ${CMAKE_COMMAND} -E rm -f ${filter_archive}
  COMMAND ${CMAKE_AR} qcs ${filter_archive} ${filter_objects}
  DEPENDS ${filter_objects} VERBATIM)
add_custom_target(fuzz_filter_archive DEPENDS ${filter_archive})

foreach(kind ppd postscript text options)
  kpx_add_fuzzer(NAME filter_${kind} SOURCES fuzz/filter_${kind}_fuzz.cpp
                 OPTIONS ${filter_options} LINK ${filter_archive} ${KPX_FUZZ_CORE} -lcups ${TextSetting_LDFLAGS})
  add_dependencies(fuzz_filter_${kind} fuzz_filter_archive)
endforeach()
