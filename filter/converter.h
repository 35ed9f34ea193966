// The programs that turn a document into another kind: run without a shell, with no more of the
// machine than a document may need: limited time and memory, and no connection to anything.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace kpx::filter {

// One run of a converter, which ends with this process at the latest.
struct ConverterCall {
  std::vector<std::string> words;        // words[0] is the program's path
  std::vector<std::string> environment;  // "NAME=value"
  int input = -1;                        // its standard input
  int output = -1;                       // its standard output
};

class Converter {
 public:
  // Starts it. The descriptors stay the caller's.
  explicit Converter(const ConverterCall &call);
  // Ends one that is still running.
  ~Converter();
  Converter(const Converter &) = delete;
  Converter &operator=(const Converter &) = delete;

  // Waits for its end: its exit status, 128 plus the number of the signal that ended it, 127 when
  // it could not be started, or not without its limits.
  int Wait();

  // The beginning of what it printed on standard error, once it has ended.
  std::string Messages() const;

 private:
  pid_t process_ = -1;
  int messages_ = -1;
};

// The environment of converters: nothing of ours but where temporary files lie.
std::vector<std::string> ConverterEnvironment();

// A descriptor that is closed with it.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() { Close(); }
  Descriptor(const Descriptor &) = delete;
  Descriptor &operator=(const Descriptor &) = delete;

  int Number() const { return number_; }
  [[nodiscard]] bool IsOpen() const { return number_ >= 0; }
  void Close();

 private:
  int number_;
};

// A new file without a name, open for reading and writing; -1 with errno. It lies where temporary
// files do (TMPDIR).
[[nodiscard]] int NamelessFile();

}  // namespace kpx::filter
