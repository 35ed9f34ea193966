#include "filterrun.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <deque>
#include <stdexcept>

#include "deadline.h"
#include "temporarydirectory.h"

namespace {

int Start(const std::vector<std::string> &arguments, int input, int output, int errors) {
  std::vector<char *> argv;
  for (const std::string &argument : arguments)
    argv.push_back(const_cast<char *>(argument.c_str()));
  argv.push_back(nullptr);
  const pid_t child = fork();
  if (child < 0) throw std::runtime_error("fork");
  if (child == 0) {
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    execv(KPX_FILTER, argv.data());
    _exit(127);
  }
  return child;
}

// A run whose input and output are files.
class RunWithFiles {
 public:
  RunWithFiles(const std::vector<std::string> &arguments, const std::string &input) {
    const int in = open(directory_.Write("in", input).c_str(), O_RDONLY | O_CLOEXEC);
    const int out = open(directory_.Write("out", "").c_str(), O_WRONLY | O_CLOEXEC);
    const int err = open(directory_.Write("err", "").c_str(), O_WRONLY | O_CLOEXEC);
    child_ = Start(arguments, in, out, err);
    for (const int fd : {in, out, err}) close(fd);
  }

  FilterRun Result() const {
    const int status = WaitFor(child_);
    return {status, ContentOf(directory_.Path("out")), ContentOf(directory_.Path("err"))};
  }

 private:
  TemporaryDirectory directory_;
  pid_t child_ = 0;
};

constexpr size_t kAtATime = 16;

}  // namespace

FilterRun RunFilter(const std::vector<std::string> &arguments, const std::string &input) {
  return RunWithFiles(arguments, input).Result();
}

std::vector<FilterRun> FilterAll(const std::vector<FilterInput> &jobs) {
  std::vector<FilterRun> results;
  std::deque<RunWithFiles> running;
  for (const FilterInput &job : jobs) {
    running.emplace_back(FilterArgumentsOf(job.call), job.input);
    if (running.size() < kAtATime && results.size() + running.size() < jobs.size()) continue;
    for (const RunWithFiles &run : running) results.push_back(run.Result());
    running.clear();
  }
  return results;
}

FilterRun Convert(const std::string &ppd_path, const std::string &paf_path) {
  return RunFilter(
      {"DEF_KPXFILTER", "--ppdfile", ppd_path, "--paffile", paf_path, "2>&1 & >/dev/null"});
}

std::vector<std::string> FilterArgumentsOf(const FilterCall &call) {
  return {"/opt/orlan/bin/kpxfilter",
          call.options,
          "-J" + call.title,
          "-e" + call.title,
          "-L" + call.user,
          "--filter",
          "--type",
          call.type,
          "--ppdfile",
          call.ppd_file,
          "--deffile",
          call.def_file};
}

FilterRun Filter(const FilterCall &call, const std::string &input) {
  return RunFilter(FilterArgumentsOf(call), input);
}

int StartFilter(const std::vector<std::string> &arguments, int input, int output) {
  const int errors = open("/dev/null", O_WRONLY | O_CLOEXEC);
  const int child = Start(arguments, input, output, errors);
  close(errors);
  return child;
}

int WaitFor(int process) {
  const int status = AwaitChild(process, "kpxfilter");
  return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}
