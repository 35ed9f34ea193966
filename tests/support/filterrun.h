// Runs the filter program.
#pragma once

#include <string>
#include <vector>

struct FilterRun {
  int status = -1;     // as WaitFor gives it
  std::string output;  // its standard output
  std::string errors;  // its standard error
};

// Runs kpxfilter with `arguments` (argv[0] first), `input` as its standard input.
FilterRun RunFilter(const std::vector<std::string> &arguments, const std::string &input = {});

// A conversion, called as the program's start-up calls it.
FilterRun Convert(const std::string &ppd_path, const std::string &paf_path);

// What the interface script of a queue gives the filter.
struct FilterCall {
  std::string options, title = "Report", user = "anna", type = "postscript";
  std::string ppd_file, def_file;
};

// The arguments of a job, as the interface script has them.
std::vector<std::string> FilterArgumentsOf(const FilterCall &call);
FilterRun Filter(const FilterCall &call, const std::string &input);

// The same of many jobs, some of them at a time.
struct FilterInput {
  FilterCall call;
  std::string input;
};
std::vector<FilterRun> FilterAll(const std::vector<FilterInput> &jobs);

// Starts the program between two descriptors (which stay the caller's), standard error to nowhere;
// returns the process id.
int StartFilter(const std::vector<std::string> &arguments, int input, int output);

// Waits for a process: its exit status, 128 plus the signal's number when a signal ended it.
int WaitFor(int process);
