// The user's language and the places of its files.
#pragma once

#include <string>

// The language directory for the environment variable LANG, such as "deu" or "deu/utf8"; "enu" for
// every language that has none of its own.
std::string G_GetNlsDirFromLang();

// Fill msg_path, hlp_path, ppd_path with paf_path, and queues_path from lng_dir.
void BuildMessagesPath();
void BuildHelpPath();
void BuildPrinterPaths();
void BuildQueuesPath();
