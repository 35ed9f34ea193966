// The administration program without its windows: what it does from its start to a Save, by the
// same functions of the core.
#pragma once

#include <string>
#include <vector>

#include "clist.h"

// Reads the message catalogue and the printers of the installation, as the program's start does.
void LoadCatalogues();

// Reads the queues as the program's start does; what goes wrong is added to `messages`.
void LoadQueues(CList *messages);

// Adds a queue through the rules of the add-queue dialog: false when they refuse it.
bool AddQueueToSession(const std::string &name, const std::string &type_key,
                       const std::string &printer, const std::string &address);

// Takes a queue out of the working set and remembers it for the Save, as the Delete button does.
void DeleteQueueInSession(const std::string &name);

// Presses Save: how many errors the list of errors shows, at least 1 when the list file cannot be
// written.
size_t SaveSession();
