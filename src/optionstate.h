// What the option logic and the properties window work on: one queue's work copy and its printer.

#pragma once

#include <string>

#include "chash.h"
#include "clist.h"
#include "queuetypes.h"

struct CFeature;
struct CPrinter;
struct CPrintQueue;

extern Owned<CString> G_CurrentQueue_name;
extern Owned<CPrintQueue> G_CurrentQueue;  // the work copy

// Lent by the work copy: main keyword to CString choice, name to CCpsParams, name to CCmtParams.
extern CHash *G_QueueFeatures_hash;
extern CHash *G_QueueInstallableOptions_hash;
extern CHash *G_QueueCustomPapers_hash;
extern CHash *G_QueueCustomMedias_hash;

extern CPrinter *G_CurrentPrinter;  // lent by the printer catalogue

// Lent by the printer: main keyword to CFeature, limit name to CString (null without custom sizes),
// list of CConstrain.
extern CHash *G_PrinterFeatures_hash;
extern CHash *G_PrinterInstallableOptions_hash;
extern CHash *G_PrinterCpsParam_hash;
extern CList *G_PrinterConstraints_list;

extern int G_PrinterModel;  // number of the printer model, from 1; 0 while none was met

// Sets G_CurrentPrinter and the four globals below it; null clears them. The printer's records may
// not change as long as it is current, since the answers about its constraints are prepared once.
void SetCurrentPrinter(CPrinter *printer);

// Takes over the work copy with its name and sets the queue's four globals; null clears them.
void SetCurrentQueue(Owned<CString> &&name, Owned<CPrintQueue> &&queue);

// The type of the current queue: its key, empty while no queue is current, and what goes with it.
std::string CurrentQueueTypeKey();
const QueueType &CurrentQueueType();

// Features that are never compared with constraints, neither as choice nor as setting.
[[nodiscard]] bool IsExemptFeature(const char *feature);

// The current printer's feature or, failing that, its installable option of that name; lent, null
// when it has neither.
const CFeature *PrinterFeature(const char *name);

// Whether `option` is one of the options of `feature` in `features` (main keyword to CFeature).
[[nodiscard]] bool IsOptionOf(const CHash *features, const char *feature, const char *option);

// What the queue defines itself beside the printer's options.
enum class CustomKind { kPaper, kMedia };
struct CustomFacts {
  CustomKind kind;
  const char *feature;    // whose list offers the queue's own entries too
  const char *compared;   // what they count as in constraints, with the option "True"
  const char *picture;    // file that shows them
  CHash *const *entries;  // G_QueueCustomPapers_hash or G_QueueCustomMedias_hash
  bool *is_current;       // G_CustomPaperIsCurrent or G_CustomMediaIsCurrent
};
const CustomFacts &CustomFactsOf(CustomKind kind);
// Null for features without entries of the queue's own.
const CustomFacts *CustomFactsOf(const char *feature);

// Whether the current page size or media type is one of the queue's own, as the lists filled last
// found it.
extern bool G_CustomPaperIsCurrent;
extern bool G_CustomMediaIsCurrent;

// Whether the choice is a custom paper size or media type: the feature offers such entries, and the
// current printer's feature has no such option.
[[nodiscard]] bool IsCustomChoice(const char *feature, const char *option);

// The display text of a feature; one without a text, or that the current printer lacks, is shown as
// it is.
std::string FeatureDisplayText(const char *feature);

// The display text of a feature's option; an option that the feature lacks is shown as it is.
std::string OptionDisplayText(const char *feature, const char *option);

// Replaces the value of `key` in `settings` (one of the queue's dictionaries of texts).
void SetQueueValue(CHash *settings, const char *key, const std::string &value);

// The work copy's choice for a feature, empty when it has none.
std::string QueueFeatureValue(const char *feature);
