#include "multipleup.h"

#include "debug.h"
#include "ignoreresult.h"
#include "optionstate.h"
#include "pixmapnames.h"
#include "settingkeys.h"

namespace {

constexpr char L_UsualOrder[] = "Left";

bool IsSet(const char *key) { return HashFind(G_QueueFeatures_hash, key) != nullptr; }

void AddMissing(const char *key, const char *value) {
  if (!IsSet(key))
    IgnoreResult(HashPutText(G_QueueFeatures_hash, key, value), "the dictionary is there");
}

bool SheetLies() {
  const std::string orientation = QueueFeatureValue(kOrientationKey);
  return orientation == "Landscape" || orientation == "RotLandscape";
}

}  // namespace

void AddDefaultMultipleUpSettings() {
  const LogScope log("AddDefaultMultipleUpSettings");
  if (QueueFeatureValue(kBookletKey) != "1") AddMissing(kNupKey, "1");
  AddMissing(kNupOrderKey, L_UsualOrder);
  AddMissing(kBookletKey, "0");
}

std::string CurrentMultipleUp() {
  if (!IsSet(kNupKey) && QueueFeatureValue(kBookletKey) == "1") return kBookletKey;
  return QueueFeatureValue(kNupKey);
}

std::string CurrentNupOrder() {
  return IsSet(kNupOrderKey) ? QueueFeatureValue(kNupOrderKey) : L_UsualOrder;
}

OrderBoxes CurrentOrderBoxes() {
  const std::string choice = CurrentMultipleUp();
  if (choice == "4") return OrderBoxes::kAll;
  if (choice == "2" && !SheetLies()) return OrderBoxes::kLeftAndRight;
  return OrderBoxes::kNone;
}

OrderBoxes ChooseMultipleUp(const std::string &value) {
  const LogScope log("ChooseMultipleUp");
  for (const char *key : {kBookletKey, kNupKey, kNupOrderKey})
    HashRemove(G_QueueFeatures_hash, key);
  if (value == kBookletKey) {
    IgnoreResult(HashPutText(G_QueueFeatures_hash, kBookletKey, "1"), "the dictionary is there");
  } else {
    IgnoreResult(HashPutText(G_QueueFeatures_hash, kNupKey, value.c_str()),
                 "the dictionary is there");
  }
  return CurrentOrderBoxes();
}

void ChooseNupOrder(const std::string &order) {
  const LogScope log("ChooseNupOrder");
  SetQueueValue(G_QueueFeatures_hash, kNupOrderKey, order);
}

std::string MultipleUpPicture(const std::string &value) {
  if (value == kBookletKey) return G_GetPixmapNameFor(kBookletKey, "1");
  return G_GetPixmapNameFor(kNupKey, value);
}

std::string NupOrderPicture(const std::string &order) {
  return G_GetPixmapNameFor(kNupOrderKey, order);
}
