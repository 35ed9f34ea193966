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

set(filter_libraries ${filter_archive} ${KPX_FUZZ_CORE} -lcups ${Seccomp_LDFLAGS} ${TextSetting_LDFLAGS})
foreach(kind ppd postscript text options queueppd words)
  # libcups reads a whole PPD file for each of their inputs.
  set(runs 20000)
  if(kind STREQUAL "queueppd")
    set(runs 4000)
  elseif(kind STREQUAL "words")
    set(runs 1000)
  endif()
  kpx_add_fuzzer(NAME filter_${kind} SOURCES fuzz/filter_${kind}_fuzz.cpp RUNS ${runs}
                 OPTIONS ${filter_options} LINK ${filter_libraries})
  add_dependencies(fuzz_filter_${kind} fuzz_filter_archive)
endforeach()
