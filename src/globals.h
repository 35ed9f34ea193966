// Process-wide state that the core's modules and the windows share.
#pragma once

#include <string>

#include "chash.h"
#include "clist.h"

struct CMessages;
struct CHelp;
struct CPrinters;
struct CPrintQueues;

enum ProgramMode {
  kModeNeither = 0,
  kModeAdministration = 1,
  kModePrintTool = 2,
  kModeJobs = 3,
};

extern int G_ProgName;  // a ProgramMode

extern Owned<CMessages> G_Messages;
extern Owned<CHelp> G_Help;
extern Owned<CPrinters> G_Printers;
extern CHash *G_Printers_hash;  // lent by G_Printers
extern Owned<CPrintQueues> G_Queues;
extern CHash *G_Queues_hash;  // lent by G_Queues
extern Owned<CPrintQueues> G_OrgQueues;
extern CHash *G_OrgQueues_hash;  // lent by G_OrgQueues
extern Owned<CList>
    G_UnfinishedRemovals;  // CString; what an interrupted save was to remove, or null
extern Owned<CHash> G_Fonts_hash;
extern Owned<CList> G_FilesList;     // of CSelection
extern std::string G_StdinFileName;  // empty: nothing was captured

extern std::string lng_dir;
extern std::string msg_path;
extern std::string hlp_path;
extern std::string ppd_path;
extern std::string paf_path;
extern std::string queues_path;
extern std::string xpm_path;  // reserved; nothing fills it

// Deletes the global records in their order and forgets them.
void DeleteGlobalVars();
