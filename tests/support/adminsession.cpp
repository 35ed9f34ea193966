#include "adminsession.h"

#include <algorithm>

#include "addqueue.h"
#include "cmessages.h"
#include "coresupport.h"
#include "cprintqueues.h"
#include "globals.h"
#include "ignoreresult.h"
#include "language.h"
#include "loadprinters.h"
#include "loadqueues.h"
#include "must.h"
#include "porting.h"
#include "queuelistkeep.h"
#include "savequeues.h"

namespace {

std::vector<std::string> deleted_queues;  // the one deleted last first

}  // namespace

void LoadCatalogues() {
  G_ProgName = kModeAdministration;
  lng_dir = G_GetNlsDirFromLang();
  BuildMessagesPath();
  G_Messages = CreateMessages(msg_path.c_str());
  fFillFromPaf_Function(G_Messages.get());
  LoadPrinters(nullptr);
}

void LoadQueues(CList *messages) {
  BuildQueuesPath();
  G_Queues = CreatePrintQueues(queues_path.c_str());
  LoadQueuesAtStart(messages);
  deleted_queues = Texts(G_UnfinishedRemovals.get());
}

bool AddQueueToSession(const std::string &name, const std::string &type_key,
                       const std::string &printer, const std::string &address) {
  return AddQueue({.name = name,
                   .printer = printer,
                   .type = G_Translate(type_key.c_str()),
                   .transport = G_Translate("tcpip"),
                   .address = address})
      .added;
}

void DeleteQueueInSession(const std::string &name) {
  HashRemove(G_Queues_hash, name.c_str());
  deleted_queues.insert(deleted_queues.begin(), name);
}

size_t SaveSession() {
  const Owned<CList> names = ListOf(deleted_queues);
  const Owned<CList> errors = CreateList();
  const SaveResult result = SaveQueues(names.get(), errors.get(), {});
  const size_t count = Texts(errors.get()).size();
  return result == SaveResult::ListNotWritable ? std::max<size_t>(count, 1) : count;
}
