#include "globals.h"

#include "chelp.h"
#include "cmessages.h"
#include "cprinters.h"
#include "cprintqueues.h"
#include "debug.h"

int G_ProgName = kModeNeither;

Owned<CMessages> G_Messages;
Owned<CHelp> G_Help;
Owned<CPrinters> G_Printers;
CHash *G_Printers_hash = nullptr;
Owned<CPrintQueues> G_Queues;
CHash *G_Queues_hash = nullptr;
Owned<CPrintQueues> G_OrgQueues;
CHash *G_OrgQueues_hash = nullptr;
Owned<CList> G_UnfinishedRemovals;
Owned<CHash> G_Fonts_hash;
Owned<CList> G_FilesList;
std::string G_StdinFileName;

std::string lng_dir;
std::string msg_path;
std::string hlp_path;
std::string ppd_path;
std::string paf_path;
std::string queues_path;
std::string xpm_path;

namespace {

// `shown` is the global's name in its log line, which differs for one of them.
template <class T>
void DeleteGlobal(Owned<T> &global, const std::string &shown, const std::string &name) {
  Log(4, shown + " is " + PointerText(global.get()));
  if (global == nullptr) return;
  Log(4, "Delete " + name + "...");
  global.reset();
}

template <class T>
void DeleteGlobal(Owned<T> &global, const std::string &name) {
  DeleteGlobal(global, name, name);
}

}  // namespace

void DeleteGlobalVars() {
  const LogScope log("DeleteGlobalVars");
  DeleteGlobal(G_Printers, "G_Printers");
  DeleteGlobal(G_Queues, "G_Queues");
  DeleteGlobal(G_OrgQueues, "G_OrgQueues");
  DeleteGlobal(G_Messages, "G_Messages");
  // Kept on purpose: the log line names "G_Helps".
  DeleteGlobal(G_Help, "G_Helps", "G_Help");
  const char *stdin_name = G_StdinFileName.empty() ? nullptr : G_StdinFileName.c_str();
  Log(4, "G_StdinFileName is " + PointerText(stdin_name));
  G_StdinFileName.clear();
}
