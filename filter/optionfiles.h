// Where the settings of a job come from: option files and the spooler's option words. Keys have
// their leading asterisk, texts are UTF-8.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "textline.h"

namespace kpx::filter {

// The words of the form "*key=value" among the spooler's options, which are separated by blanks. A
// backslash takes the next character as it is, and quotes keep blanks together. One comma after a
// word is not part of it. "*key" is "*key=True" and "no*key" is "*key=False", as the spooler writes
// them.
std::vector<KeyValue> ParseOptionWords(std::string_view options);

// The user's option file of a queue: "users/<user>:<file name>" beside the queue's. Of a user on
// another host ("host!user") the part after the "!" counts. Empty for a user or a file without a
// name, and for names that would lead elsewhere.
std::string UserOptionFile(const std::string &queue_file, std::string_view user);

// What became of reading an option file.
struct [[nodiscard]] OptionFile {
  std::vector<KeyValue> settings;
  std::string warning;                       // why the file does not count
  std::string error;                         // why the job cannot be printed as its settings say
  bool counts = false;                       // it is there and its settings were read
  std::vector<std::string> file_names = {};  // of the files of a waiting request, in their order
};

// The queue's option file. One that is not there or cannot be read is an error, and so is one
// without any setting where `has_options` says that there is something to set and the queue list
// does not say that nothing is: either would print a job openly that the queue is to hold.
OptionFile ReadQueueOptions(const std::string &path, bool has_options);

// A user's option file. One that is not there is empty. It counts only when it is a regular file of
// that user or of root, not reached through a symbolic link; else there is a warning. One that
// counts and cannot be read is an error.
OptionFile ReadUserOptions(const std::string &path, std::string_view user);

// The settings of one waiting request (see requestfile.h), beside the queue's file `queue_file`.
// What ReadUserOptions says holds for the file and for the directory it is in. `request` may be
// empty; what can name no file is ignored with a warning. While the print tool is sending a job,
// one that is not there yet is waited for, two seconds at most.
OptionFile ReadRequestOptions(const std::string &queue_file, std::string_view user,
                              std::string_view request);

// The name among `names` of the file that standard input is: `files` has the paths of all of them,
// a line each, in the same order. Empty when it is none of them, or their numbers differ.
std::string NameOfInput(std::string_view files, const std::vector<std::string> &names);

}  // namespace kpx::filter
