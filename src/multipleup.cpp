#include "multipleup.h"

#include "debug.h"
#include "ignoreresult.h"
#include "optionstate.h"
#include "pixmapnames.h"

namespace {

constexpr char L_Nup[] = "*Nup";
constexpr char L_NupOrder[] = "*NupOrder";
constexpr char L_UsualOrder[] = "Left";

bool IsSet(const char *key) { return HashFind(G_QueueFeatures_hash, key) != nullptr; }

void AddMissing(const char *key, const char *value) {
  if (!IsSet(key))
    IgnoreResult(HashPutText(G_QueueFeatures_hash, key, value), "the dictionary is there");
}

bool SheetLies() {
  const std::string orientation = QueueFeatureValue("*Orientation");
  return orientation == "Landscape" || orientation == "RotLandscape";
}

}  // namespace

void AddDefaultMultipleUpSettings() {
  const LogScope log("AddDefaultMultipleUpSettings");
  if (QueueFeatureValue(kBooklet) != "1") AddMissing(L_Nup, "1");
  AddMissing(L_NupOrder, L_UsualOrder);
  AddMissing(kBooklet, "0");
}

std::string CurrentMultipleUp() {
  if (!IsSet(L_Nup) && QueueFeatureValue(kBooklet) == "1") return kBooklet;
  return QueueFeatureValue(L_Nup);
}

std::string CurrentNupOrder() {
  return IsSet(L_NupOrder) ? QueueFeatureValue(L_NupOrder) : L_UsualOrder;
}

OrderBoxes CurrentOrderBoxes() {
  const std::string choice = CurrentMultipleUp();
  if (choice == "4") return OrderBoxes::kAll;
  if (choice == "2" && !SheetLies()) return OrderBoxes::kLeftAndRight;
  return OrderBoxes::kNone;
}

OrderBoxes ChooseMultipleUp(const std::string &value) {
  const LogScope log("ChooseMultipleUp");
  for (const char *key : {kBooklet, L_Nup, L_NupOrder}) HashRemove(G_QueueFeatures_hash, key);
  if (value == kBooklet) {
    IgnoreResult(HashPutText(G_QueueFeatures_hash, kBooklet, "1"), "the dictionary is there");
  } else {
    IgnoreResult(HashPutText(G_QueueFeatures_hash, L_Nup, value.c_str()),
                 "the dictionary is there");
  }
  return CurrentOrderBoxes();
}

void ChooseNupOrder(const std::string &order) {
  const LogScope log("ChooseNupOrder");
  SetQueueValue(G_QueueFeatures_hash, L_NupOrder, order);
}

std::string MultipleUpPicture(const std::string &value) {
  if (value == kBooklet) return G_GetPixmapNameFor(kBooklet, "1");
  return G_GetPixmapNameFor(L_Nup, value);
}

std::string NupOrderPicture(const std::string &order) {
  return G_GetPixmapNameFor(L_NupOrder, order);
}
