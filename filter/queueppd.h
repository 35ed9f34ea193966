// The PPD file that the spooler gets for a queue: what print dialogs offer of it.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "textline.h"

namespace kpx::filter {

// What a queue's PPD file is made from.
struct QueuePpdSource {
  std::string model;               // the text of its printer model's PPD file
  std::string type;                // of its jobs ("postscript", "text", "pcl6")
  std::vector<KeyValue> settings;  // of its option file
  // The same model in other languages: "de" and the text of that PPD file.
  std::vector<std::pair<std::string, std::string>> translations;
};

// A queue's PPD file. A custom paper size or media type is a choice like others; one whose name
// cannot be a choice goes by another.
struct QueuePpd {
  std::string text;
  std::map<std::string, std::string, std::less<>> papers, medias;  // choice -> custom name
};

// The model's choices, texts and constraints, with the queue's settings as defaults and its custom
// sizes and types, without any printer code: options become code in the filter alone. Its filter
// lines hand jobs over as they come, except those that the spooler's converters make a PDF of. The
// model's text may be anything; what libcups cannot read it cannot read afterwards either.
QueuePpd MakeQueuePpd(const QueuePpdSource &source);

}  // namespace kpx::filter
