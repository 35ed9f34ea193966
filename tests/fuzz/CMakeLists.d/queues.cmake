# The queue database's readers, and the one file of the spooler that is rewritten in place.
kpx_add_fuzzer(NAME queue_list SOURCES fuzz/queue_list_fuzz.cpp)
kpx_add_fuzzer(NAME option_file SOURCES fuzz/option_file_fuzz.cpp)
kpx_add_fuzzer(NAME interface_script SOURCES fuzz/interface_script_fuzz.cpp)
