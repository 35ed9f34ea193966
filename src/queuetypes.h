// The types of queues: the language of the jobs that a queue takes, and what goes with it.
#pragma once

#include <string_view>

inline constexpr char kPostScriptType[] = "postscript";
inline constexpr char kTextType[] = "text";
inline constexpr char kPclType[] = "pcl6";
inline constexpr char kRawType[] = "raw";

struct QueueType {
  const char *key;         // as queues and interface scripts name it; also its catalogue key
  bool has_fonts;          // its jobs are set in a font of the queue's
  bool has_pages_a_sheet;  // its jobs can be laid out as several pages a sheet or as a booklet
  bool has_halftones;
  bool is_filtered;  // false: its jobs go to the printer as they are
};

// All types, in the order in which they are offered; the last row is that of unknown types, whose
// key is null.
inline constexpr QueueType kQueueTypes[] = {
    {kPostScriptType, false, false, true, true}, {kTextType, true, true, true, true},
    {kPclType, false, false, false, true},       {kRawType, false, false, true, false},
    {nullptr, false, false, true, true},
};

// The row of the type `key`.
constexpr const QueueType &QueueTypeOf(std::string_view key) {
  const QueueType *type = kQueueTypes;
  while (type->key != nullptr && key != type->key) ++type;
  return *type;
}
