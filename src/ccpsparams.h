// CCpsParams: one custom paper size; its name is the key under which the queue files it.
#pragma once

#include "cobject.h"

inline constexpr char CCpsParamsClassName[] = "CCpsParams";

struct CCpsParams : CObject {
  static constexpr int kClassId = 270;
  static const CObjectOps *Ops();

  double width = 0;   // pels, 1/72 inch
  double length = 0;  // pels
};

struct CCpsParamsOps {
  CObjectOps header;
  int (*SetWidth)(CCpsParams *params, double width);
  double (*GetWidth)(const CCpsParams *params);
  int (*SetLength)(CCpsParams *params, double length);
  double (*GetLength)(const CCpsParams *params);
  int (*SetData)(CCpsParams *params, double width, double length);
};

// Both in pels; any number is taken. Out of memory: the catalogue's words, status 3.
[[nodiscard]] Owned<CCpsParams> CreateCpsParams(double width, double length);

int fCCpsParams_Class_ID_Function();
const char *fCCpsParams_Class_Name_Function();

// Takes the record over; 1, also for null.
int fDelete_CCpsParams_Function(CCpsParams *params);

// A record of the same width and length; null for null.
[[nodiscard]] Owned<CCpsParams> fClone_CCpsParams_Function(const CCpsParams *params);

// Setters: 1, 0 for a null record. Getters: 0.0 for a null record.
[[nodiscard]] int fSetWidth_Function(CCpsParams *params, double width);
double fGetWidth_Function(const CCpsParams *params);
[[nodiscard]] int fSetLength_Function(CCpsParams *params, double length);
double fGetLength_Function(const CCpsParams *params);
[[nodiscard]] int fSetData_Function(CCpsParams *params, double width, double length);
